#pragma once
// Which screen each menu command opens. A menu item whose screen is not in the catalog is
// shown disabled.

#include <QString>
#include <functional>

class QWidget;

struct ScreenEntry {
    QString screenName;
    bool modal = false;
    std::function<QWidget*()> create;
};

// The entry for a menu item name, or nullptr when that command opens nothing yet.
const ScreenEntry* screenForMenuItem(const QString& itemName);
// The entry that opens the screen of that name, or nullptr.
const ScreenEntry* screenNamed(const QString& screenName);
