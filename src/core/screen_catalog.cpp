#include "core/screen_catalog.h"

#include "utilities/backup_data.h"

#include <QHash>

namespace {

template <typename Screen> ScreenEntry entry(const char* name, bool modal = false) {
    return {QString::fromLatin1(name), modal, [] { return static_cast<QWidget*>(new Screen); }};
}

const QHash<QString, ScreenEntry>& catalog() {
    static const QHash<QString, ScreenEntry> screens{
        {"mnuUtilitiesBackup", entry<frmBackupData>("frmBackupData", true)},
        {"mnuUtilitiesRestore", entry<frmRestoreData>("frmRestoreData", true)},
    };
    return screens;
}

} // namespace

const ScreenEntry* screenForMenuItem(const QString& itemName) {
    const auto& screens = catalog();
    auto it = screens.find(itemName);
    return it == screens.end() ? nullptr : &it.value();
}
