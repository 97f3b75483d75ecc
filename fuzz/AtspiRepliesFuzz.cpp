// Feeds the readers of AT-SPI replies values built from arbitrary bytes: the
// types the backend expects (a(so), au, a(sss), (iiii)) and others close to
// them, with any content. Each value travels the way a reply does: QtDBus
// marshals it into a D-Bus message and reads it back (a call to an object of
// this process on a private bus), and the readers see what QtDBus hands over.
// A reader that answers for a value of the wrong type, or any crash,
// sanitizer report or hang, is a finding.
#include "backends/linux/AtspiReplies.hpp"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/prctl.h>
#include <tuple>
#include <unistd.h>

namespace {

// The fuzzer's bytes, read a piece at a time; zeros once they run out.
class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::uint8_t byte() { return at_ < size_ ? data_[at_++] : 0; }
    std::uint32_t word() {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            value = value << 8 | byte();
        }
        return value;
    }
    // Up to 16 characters; D-Bus texts hold no NUL.
    QString text() {
        std::string out;
        for (int n = byte() % 17; n > 0; --n) {
            const char c = static_cast<char>(byte());
            out += c == '\0' ? '?' : c;
        }
        return QString::fromUtf8(out);
    }
    // A valid object path, now and then the AT-SPI null object.
    QDBusObjectPath path() {
        if (byte() % 8 == 0) {
            return QDBusObjectPath(QStringLiteral("/org/a11y/atspi/null"));
        }
        QString out;
        for (int n = 1 + byte() % 4; n > 0; --n) {
            out += QLatin1Char('/') + QString::number(word(), 36);
        }
        return QDBusObjectPath(out);
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

// A D-Bus structure of the given member types.
template <typename... T> struct Structure { std::tuple<T...> members; };

template <typename... T> QDBusArgument& operator<<(QDBusArgument& arg, const Structure<T...>& v) {
    arg.beginStructure();
    std::apply([&arg](const T&... member) { (arg << ... << member); }, v.members);
    arg.endStructure();
    return arg;
}
template <typename... T>
const QDBusArgument& operator>>(const QDBusArgument& arg, Structure<T...>& v) {
    arg.beginStructure();
    std::apply([&arg](T&... member) { (arg >> ... >> member); }, v.members);
    arg.endStructure();
    return arg;
}

// The shapes the readers expect, and near misses.
using So = Structure<QString, QDBusObjectPath>;
using Ss = Structure<QString, QString>;
using Sss = Structure<QString, QString, QString>;
using Iiii = Structure<int, int, int, int>;
using Ii = Structure<int, int>;

} // namespace

Q_DECLARE_METATYPE(So)
Q_DECLARE_METATYPE(Ss)
Q_DECLARE_METATYPE(Sss)
Q_DECLARE_METATYPE(Iiii)
Q_DECLARE_METATYPE(Ii)

namespace {

template <typename T> QVariant listOf(Bytes& in, T (*make)(Bytes&)) {
    QList<T> list;
    for (int n = in.byte() % 6; n > 0; --n) {
        list.push_back(make(in));
    }
    return QVariant::fromValue(list);
}

// One value, its type chosen by the first byte.
QVariant value(Bytes& in) {
    switch (in.byte() % 12) {
    case 0:
        return listOf<So>(in, [](Bytes& b) { return So{{b.text(), b.path()}}; });
    case 1:
        return listOf<Ss>(in, [](Bytes& b) { return Ss{{b.text(), b.text()}}; });
    case 2:
        return listOf<uint>(in, [](Bytes& b) { return uint{b.word()}; });
    case 3:
        return listOf<int>(in, [](Bytes& b) { return static_cast<int>(b.word()); });
    case 4:
        return listOf<Sss>(in, [](Bytes& b) { return Sss{{b.text(), b.text(), b.text()}}; });
    case 5: {
        const auto word = [&in] { return static_cast<int>(in.word()); };
        return QVariant::fromValue(Iiii{{word(), word(), word(), word()}});
    }
    case 6:
        return QVariant::fromValue(Ii{{static_cast<int>(in.word()), static_cast<int>(in.word())}});
    case 7:
        return listOf<QString>(in, [](Bytes& b) { return b.text(); });
    case 8:
        return QVariant(in.text());
    case 9:
        return QVariant(uint{in.word()});
    case 10:
        return QVariant::fromValue(in.path());
    default:
        return QVariant(in.byte() % 2 == 0);
    }
}

[[noreturn]] void finding(const char* what) {
    std::fprintf(stderr, "AtspiRepliesFuzz: %s\n", what);
    std::abort();
}

// Reads every argument of a call with every reader, as the backend would
// read a reply; a reader may answer only for a value of its own type.
class Readers final : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        for (const QVariant& argument : message.arguments()) {
            const QString signature = argument.canConvert<QDBusArgument>()
                                          ? argument.value<QDBusArgument>().currentSignature()
                                          : QString();
            if (hg::readObjectRefs(argument) && signature != QLatin1String("a(so)")) {
                finding("object references read from another type");
            }
            if (const auto words = hg::readStateWords(argument)) {
                if (signature != QLatin1String("au")) {
                    finding("state words read from another type");
                }
                for (unsigned bit = 0; bit < 200; bit += 7) {
                    (void)hg::hasState(*words, bit);
                }
            }
            if (hg::readHasArea(argument) && signature != QLatin1String("(iiii)")) {
                finding("an area read from another type");
            }
            if (const auto count = hg::readActionCount(argument)) {
                if (signature != QLatin1String("a(sss)") || *count < 0) {
                    finding("an action count read from another type");
                }
            }
        }
        connection.send(message.createReply());
        return true;
    }
};

QDBusConnection* bus = nullptr;

// A private bus, for the life of the fuzzer.
void startBus() {
    // Its socket goes in the temporary folder (scripts/fuzz gives each run
    // its own), as the daemon, killed with the fuzzer, leaves it behind.
    const std::string listen =
        "--address=unix:dir=" + std::filesystem::temp_directory_path().string();
    int out[2];
    if (::pipe(out) != 0) {
        finding("no pipe");
    }
    if (::fork() == 0) {
        // It ends with the fuzzer, and keeps none of its outputs open.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(out[1], 1);
        const int null = ::open("/dev/null", O_RDWR);
        ::dup2(null, 0);
        ::dup2(null, 2);
        ::execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--print-address=1",
                 listen.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ::close(out[1]);
    std::string address;
    char c = 0;
    while (::read(out[0], &c, 1) == 1 && c != '\n') {
        address += c;
    }
    if (address.empty()) {
        finding("dbus-daemon did not start (is it installed?)");
    }
    bus = new QDBusConnection(
        QDBusConnection::connectToBus(QString::fromStdString(address), QStringLiteral("fuzz")));
    if (!bus->isConnected() ||
        !bus->registerVirtualObject(QStringLiteral("/readers"), new Readers())) {
        finding("no connection to the private bus");
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    static QCoreApplication app(*argc, *argv);
    qDBusRegisterMetaType<So>();
    qDBusRegisterMetaType<QList<So>>();
    qDBusRegisterMetaType<Ss>();
    qDBusRegisterMetaType<QList<Ss>>();
    qDBusRegisterMetaType<Sss>();
    qDBusRegisterMetaType<QList<Sss>>();
    qDBusRegisterMetaType<Iiii>();
    qDBusRegisterMetaType<Ii>();
    qDBusRegisterMetaType<QList<uint>>();
    qDBusRegisterMetaType<QList<int>>();
    startBus();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes in(data, size);
    QDBusMessage call =
        QDBusMessage::createMethodCall(bus->baseService(), QStringLiteral("/readers"),
                                       QStringLiteral("hg.Fuzz"), QStringLiteral("Read"));
    QList<QVariant> arguments;
    for (int n = 1 + in.byte() % 3; n > 0; --n) {
        arguments.push_back(value(in));
    }
    call.setArguments(arguments);
    // A call to this process is answered in place, the arguments marshalled
    // and read back on the way.
    const QDBusMessage reply = bus->call(call, QDBus::Block, 5000);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        finding("the call was not answered");
    }
    return 0;
}
