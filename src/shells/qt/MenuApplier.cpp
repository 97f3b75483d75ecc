#include "shells/qt/MenuApplier.hpp"

#include "shells/qt/MenuRowStyle.hpp"

#include <QAction>
#include <QMenu>

namespace hg {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

// For each new row, the index of the old row it keeps (its QAction), or none.
// Rows equal in both models are matched by a longest common subsequence; in
// each stretch between two matches, remaining rows of the same kind are
// paired in order and changed in place.
std::vector<std::size_t> matchRows(const std::vector<MenuRow>& before,
                                   const std::vector<MenuRow>& after) {
    const std::size_t n = before.size();
    const std::size_t m = after.size();
    std::vector<std::vector<std::size_t>> lcs(n + 1, std::vector<std::size_t>(m + 1, 0));
    for (std::size_t i = n; i-- > 0;) {
        for (std::size_t j = m; j-- > 0;) {
            lcs[i][j] = before[i] == after[j] ? lcs[i + 1][j + 1] + 1
                                              : std::max(lcs[i + 1][j], lcs[i][j + 1]);
        }
    }
    std::vector<std::size_t> keep(m, none);
    std::size_t i = 0;
    std::size_t j = 0;
    std::size_t gapOld = 0;
    std::size_t gapNew = 0;
    const auto pairGap = [&](std::size_t oldEnd, std::size_t newEnd) {
        std::size_t o = gapOld;
        for (std::size_t k = gapNew; k < newEnd; ++k) {
            while (o < oldEnd && before[o].kind != after[k].kind) {
                ++o;
            }
            if (o == oldEnd) {
                break;
            }
            keep[k] = o++;
        }
    };
    while (i < n && j < m) {
        if (before[i] == after[j]) {
            pairGap(i, j);
            keep[j] = i;
            gapOld = ++i;
            gapNew = ++j;
        } else if (lcs[i + 1][j] >= lcs[i][j + 1]) {
            ++i;
        } else {
            ++j;
        }
    }
    pairGap(n, m);
    return keep;
}

QString actionText(const std::string& title) {
    // A lone & would become a mnemonic marker.
    return QString::fromStdString(title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

MenuApplier::MenuApplier(QMenu& menu, TriggerHandler onTrigger)
    : menu_(menu), onTrigger_(std::move(onTrigger)) {}

void MenuApplier::configure(QAction& action, const MenuRow& row) {
    const bool separator = row.kind == MenuRow::Kind::separator;
    action.setSeparator(separator);
    action.setText(separator ? QString() : actionText(row.title));
    action.setEnabled(row.enabled());
    action.setProperty(MenuRowStyle::redProperty, row.red);
    action.setData(static_cast<int>(row.action));
}

QAction* MenuApplier::makeAction(const MenuRow& row) {
    auto* action = new QAction(&menu_);
    configure(*action, row);
    QObject::connect(action, &QAction::triggered, &menu_, [this, action] {
        onTrigger_(static_cast<MenuAction>(action->data().toInt()));
    });
    return action;
}

void MenuApplier::apply(const MenuModel& model) {
    if (model == shown_) {
        return;
    }
    const auto keep = matchRows(shown_.rows, model.rows);
    std::vector<bool> kept(actions_.size(), false);
    std::vector<QAction*> next(model.rows.size(), nullptr);
    for (std::size_t k = 0; k < model.rows.size(); ++k) {
        if (keep[k] != none) {
            next[k] = actions_[keep[k]];
            kept[keep[k]] = true;
            if (!(shown_.rows[keep[k]] == model.rows[k])) {
                configure(*next[k], model.rows[k]);
            }
        }
    }
    for (std::size_t o = 0; o < actions_.size(); ++o) {
        if (!kept[o]) {
            menu_.removeAction(actions_[o]);
            // Later: this may run inside the removed action's own triggered signal.
            actions_[o]->deleteLater();
        }
    }
    // Kept actions are already in order; new ones go before the next kept one.
    for (std::size_t k = model.rows.size(); k-- > 0;) {
        if (next[k] != nullptr) {
            continue;
        }
        next[k] = makeAction(model.rows[k]);
        QAction* before = k + 1 < next.size() ? next[k + 1] : nullptr;
        menu_.insertAction(before, next[k]);
    }
    actions_ = std::move(next);
    shown_ = model;
}

} // namespace hg
