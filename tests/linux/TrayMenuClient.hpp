#pragma once

#include <QString>
#include <optional>
#include <vector>

namespace hg::test {

// What a desktop's tray host does with an application's exported menu
// (com.canonical.dbusmenu on the session bus): read the rows, and open the
// menu, click a row and close it again.
class TrayMenuClient {
public:
    TrayMenuClient(QString service, QString menuPath);

    struct Row {
        int id = 0;
        QString label;
        bool enabled = true;
    };
    // The top-level rows, separators left out; none when the menu cannot be read.
    std::optional<std::vector<Row>> rows() const;
    // Opens the menu, clicks the row labelled `label` and closes the menu;
    // false when there is no such row or opening or clicking fails.
    bool click(const QString& label) const;

private:
    QString service_;
    QString menuPath_;
};

} // namespace hg::test
