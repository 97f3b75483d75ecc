#include "backends/linux/XdgLoginItems.hpp"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QString>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace hg {

namespace {

constexpr const char* entryName = "hushgremlin.desktop";

// The keys of the [Desktop Entry] group that switch an entry off.
bool switchedOff(const QByteArray& contents) {
    bool inMainGroup = false;
    for (const QByteArray& rawLine : contents.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (line.startsWith('[')) {
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inMainGroup || equals < 0) {
            continue;
        }
        const QByteArray key = line.left(equals).trimmed();
        const QByteArray value = line.mid(equals + 1).trimmed();
        if ((key == "Hidden" && value == "true") ||
            (key == "X-GNOME-Autostart-enabled" && value == "false")) {
            return true;
        }
    }
    return false;
}

// A value of the desktop entry string type: a backslash doubled, a line
// break or tab written as \n, \r, \t.
std::string entryString(const std::string& text) {
    std::string value;
    for (const char c : text) {
        switch (c) {
        case '\\':
            value += "\\\\";
            break;
        case '\n':
            value += "\\n";
            break;
        case '\r':
            value += "\\r";
            break;
        case '\t':
            value += "\\t";
            break;
        default:
            value += c;
        }
    }
    return value;
}

} // namespace

XdgLoginItems::XdgLoginItems(std::string programPath, std::string configHome)
    : programPath_(std::move(programPath)), configHome_(std::move(configHome)) {}

std::string XdgLoginItems::entryPath() const {
    std::string home = configHome_;
    if (home.empty()) {
        // A relative XDG_CONFIG_HOME is invalid and ignored, as the XDG rules say.
        const char* xdg = std::getenv("XDG_CONFIG_HOME");
        if (xdg != nullptr && xdg[0] == '/') {
            home = xdg;
        } else {
            const char* user = std::getenv("HOME");
            home = std::string(user != nullptr ? user : "") + "/.config";
        }
    }
    return home + "/autostart/" + entryName;
}

std::string XdgLoginItems::execArgument(const std::string& path) {
    // Exec quoting: reserved characters put the argument in double quotes,
    // inside which " ` $ and \ take a backslash. The value is then a desktop
    // entry string, whose own escaping doubles every backslash and writes a
    // line break or tab as \n, \r, \t: a raw one would end the entry's line
    // and let the rest of the path read as keys of its own. % starts a field
    // code anywhere, so it is doubled.
    const std::string reserved = " \t\n\"'\\><~|&;$*?#()`";
    const bool quote = path.find_first_of(reserved) != std::string::npos;
    std::string argument;
    if (quote) {
        argument += '"';
    }
    for (const char c : path) {
        if (quote && (c == '"' || c == '`' || c == '$' || c == '\\')) {
            argument += "\\\\";
            if (c == '\\') {
                argument += "\\\\";
                continue;
            }
        }
        if (c == '\n' || c == '\r' || c == '\t') {
            argument += c == '\n' ? "\\n" : (c == '\r' ? "\\r" : "\\t");
            continue;
        }
        argument += c;
        if (c == '%') {
            argument += '%';
        }
    }
    if (quote) {
        argument += '"';
    }
    return argument;
}

LoginItems::Status XdgLoginItems::status() const {
    QFile entry(QString::fromStdString(entryPath()));
    if (!entry.exists()) {
        return Status::notRegistered;
    }
    if (!entry.open(QIODevice::ReadOnly)) {
        return Status::notFound;
    }
    return switchedOff(entry.readAll()) ? Status::notRegistered : Status::enabled;
}

std::optional<std::string> XdgLoginItems::registerItem() {
    const std::filesystem::path path = entryPath();
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    if (error) {
        return error.message();
    }
    QSaveFile file(QString::fromStdString(path.string()));
    if (!file.open(QIODevice::WriteOnly)) {
        return file.errorString().toStdString();
    }
    const std::string contents = "[Desktop Entry]\n"
                                 "Type=Application\n"
                                 "Name=HushGremlin\n"
                                 "Comment=Shows and toggles the microphone mute of Zoom and Tuple\n"
                                 "TryExec=" +
                                 entryString(programPath_) +
                                 "\n"
                                 "Exec=" +
                                 execArgument(programPath_) +
                                 "\n"
                                 "Terminal=false\n"
                                 "X-GNOME-Autostart-enabled=true\n";
    file.write(contents.data(), static_cast<qint64>(contents.size()));
    if (!file.commit()) {
        return file.errorString().toStdString();
    }
    return std::nullopt;
}

std::optional<std::string> XdgLoginItems::unregisterItem() {
    QFile entry(QString::fromStdString(entryPath()));
    if (!QFileInfo::exists(entry.fileName()) && !QFileInfo(entry.fileName()).isSymLink()) {
        return std::nullopt;
    }
    if (!entry.remove()) {
        return entry.errorString().toStdString();
    }
    return std::nullopt;
}

} // namespace hg
