// The bad input sweep: every screen of the catalog, every typed field on it, and the inputs a
// careless or hostile hand gives. Each input is typed key by key (the long one is pasted), the
// field is left, and once every field of the screen holds it the screen's accept button is
// pressed (in a second round, so that a press that takes fields away costs nothing). Every box
// is answered with its declining button and counted; the program must not crash or hang (a
// watchdog ends the run), no box may show the database's own error, and the database must be
// byte for byte what it was when the screen opened.
//
//   bad_input_sweep GROUP [--boxes]   desk, percapita, rates, distribution, reports, utilities,
//                                     all; --boxes lists the boxes each screen showed

#include "app/main_window.h"
#include "app/screen_catalog.h"
#include "core/clock.h"
#include "core/messages.h"
#include "core/session.h"
#include "demo/demo_database.h"
#include "rates/millage_common.h"
#include "widget_actions.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace {

const QStringList& BadInputs() {
    static const QStringList inputs{
        QString(),
        QStringLiteral("   "),
        QString(10000, u'9'),
        QStringLiteral("O'Brien \"Bud\" ''"),
        QStringLiteral("'; DROP TABLE TCMaster; --"),
        QStringLiteral("M\u00fcller \u00f1 \u6771\u4eac"),
        QStringLiteral("-1"),
        QStringLiteral("1e308"),
        QStringLiteral("99999999999999999999"),
        QStringLiteral("$1,2,3"),
        QStringLiteral("13/45/2026"),
    };
    return inputs;
}

QString shown(const QString& input) {
    return input.size() > 40 ? QStringLiteral("<%1 characters>").arg(input.size())
                             : QLatin1Char('"') + input + QLatin1Char('"');
}

// What the run is doing, for the watchdog's report.
std::mutex g_doingLock;
QString g_doing;
std::atomic<qint64> g_beat{0};

// Ends the run when one step takes longer than this: a hang.
constexpr int StepSeconds = 20;

void watchdog() {
    qint64 last = -1;
    int still = 0;
    for (;;) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const qint64 now = g_beat.load();
        still = now == last ? still + 1 : 0;
        last = now;
        if (still >= StepSeconds) {
            const std::lock_guard<std::mutex> lock(g_doingLock);
            std::fprintf(stderr, "HANG: no progress for %d s while %s\n", StepSeconds,
                         g_doing.toLocal8Bit().constData());
            std::fflush(stderr);
            std::_Exit(2);
        }
    }
}

void doing(const QString& what) {
    const std::lock_guard<std::mutex> lock(g_doingLock);
    g_doing = what;
    ++g_beat;
}

// Declines every question (No, Cancel), takes OK, cancels input boxes and file choosers, and
// keeps what was shown. While a screen opens it presses on (Yes, OK) instead, so that a screen
// behind a question opens.
class SweepMessages final : public MessageService {
public:
    bool opening = false;
    QStringList boxes;

    MsgAnswer message(const QString& title, const QString& text, MsgButtons buttons,
                      MsgIcon) override {
        keep(title, text);
        switch (buttons) {
        case MsgButtons::Ok:
            return MsgAnswer::Ok;
        case MsgButtons::OkCancel:
            return opening ? MsgAnswer::Ok : MsgAnswer::Cancel;
        case MsgButtons::YesNo:
            return opening ? MsgAnswer::Yes : MsgAnswer::No;
        case MsgButtons::YesNoCancel:
            return opening ? MsgAnswer::Yes : MsgAnswer::Cancel;
        }
        return MsgAnswer::Cancel;
    }
    std::optional<QString> input(const QString& title, const QString& prompt,
                                 const QString&) override {
        keep(title, prompt);
        return std::nullopt;
    }
    std::optional<QString> openFileName(const QString& title, const QString&,
                                        const QString&) override {
        keep(title, QStringLiteral("(file chooser)"));
        return std::nullopt;
    }
    std::optional<QString> saveFileName(const QString& title, const QString&,
                                        const QString&) override {
        keep(title, QStringLiteral("(file chooser)"));
        return std::nullopt;
    }

    // Boxes that show the database's own words: a statement built from typed text.
    QStringList sqlErrors;

private:
    void keep(const QString& title, const QString& text) {
        boxes << title + QStringLiteral(": ") + text.left(120);
        for (const char* word : {"syntax error", "unrecognized token", "no such column",
                                 "no such table", "Unable to execute", "Parameter count"})
            if (text.contains(QLatin1String(word), Qt::CaseInsensitive))
                sqlErrors << g_doing + QStringLiteral(": ") + title + QStringLiteral(": ") + text;
        ++g_beat;
    }
};

SweepMessages* g_messages = nullptr;

// Every table, every row in rowid order, every value with its type: the database as bytes.
QByteArray DumpDatabase() {
    QSqlDatabase db = session().DbConnection;
    QByteArray out;
    QSqlQuery tables(db);
    tables.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY "
                               "name"));
    QStringList names;
    while (tables.next())
        names << tables.value(0).toString();
    for (const QString& name : names) {
        out += "TABLE " + name.toUtf8() + '\n';
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (!q.exec(QStringLiteral("SELECT * FROM \"%1\" ORDER BY rowid").arg(name)))
            q.exec(QStringLiteral("SELECT * FROM \"%1\"").arg(name));
        while (q.next()) {
            const QSqlRecord r = q.record();
            for (int i = 0; i < r.count(); ++i) {
                const QVariant v = r.value(i);
                out += v.isNull() ? QByteArray("<null>")
                                  : QByteArray(v.typeName()) + ':' + v.toString().toUtf8();
                out += '|';
            }
            out += '\n';
        }
    }
    return out;
}

// The tables whose rows differ between two dumps.
QStringList ChangedTables(const QByteArray& before, const QByteArray& after) {
    auto split = [](const QByteArray& dump) {
        std::map<QByteArray, QByteArray> tables;
        QByteArray current;
        for (const QByteArray& line : dump.split('\n')) {
            if (line.startsWith("TABLE "))
                current = line.mid(6);
            else
                tables[current] += line + '\n';
        }
        return tables;
    };
    const auto a = split(before);
    const auto b = split(after);
    QStringList changed;
    std::set<QByteArray> names;
    for (const auto& [name, rows] : a)
        names.insert(name);
    for (const auto& [name, rows] : b)
        names.insert(name);
    for (const QByteArray& name : names) {
        const auto x = a.find(name);
        const auto y = b.find(name);
        if (x == a.end() || y == b.end() || x->second != y->second)
            changed << QString::fromUtf8(name);
    }
    return changed;
}

// The fields a user can type into: editable line edits, text boxes and combo boxes, by name.
QList<QWidget*> TypedFields(QWidget* screen) {
    QList<QWidget*> fields;
    for (QWidget* w : screen->findChildren<QWidget*>()) {
        if (w->objectName().isEmpty() || !w->isVisible() || !w->isEnabled())
            continue;
        if (auto* line = qobject_cast<QLineEdit*>(w)) {
            if (!line->isReadOnly() && !qobject_cast<QComboBox*>(line->parentWidget()))
                fields << w;
        } else if (auto* combo = qobject_cast<QComboBox*>(w)) {
            if (combo->isEditable())
                fields << w;
        } else if (auto* edit = qobject_cast<QTextEdit*>(w)) {
            if (!edit->isReadOnly())
                fields << w;
        } else if (auto* plain = qobject_cast<QPlainTextEdit*>(w)) {
            if (!plain->isReadOnly())
                fields << w;
        }
    }
    return fields;
}

// The buttons that act on what the screen holds, pressed once every field holds a bad input:
// accept, save, void, distribute, search, figure, print, create a file, restore and import
// (both check what they are given before anything is replaced). Not pressed: those that send
// mail, copy to the desktop or back up (a file named by the input), and those that write on no
// input at all (verify, the late billing run, delete).
const QStringList AcceptButtons{
    QStringLiteral("cmdAccept"),         QStringLiteral("cmdOK"),
    QStringLiteral("cmdVoidReceipt"),    QStringLiteral("cmdDistribute"),
    QStringLiteral("cmdSearch"),         QStringLiteral("cmdCalculate"),
    QStringLiteral("cmdCalcDates"),      QStringLiteral("cmdCalcDatesEarly"),
    QStringLiteral("cmdCalcDatesLate"),  QStringLiteral("cmdPrint"),
    QStringLiteral("cmdReprintReceipt"), QStringLiteral("cmdCreate"),
    QStringLiteral("cmdRestore"),        QStringLiteral("cmdImport")};

// Inputs a screen takes as valid when every field holds them: its accept button then writes,
// as it should. The millage screens save a blank rate as 0 and take any number as a rate.
bool TakenAsValid(const QString& screen, const QString& input) {
    if (!screen.startsWith(QLatin1String("frmMaintainMillages")))
        return false;
    return input.trimmed().isEmpty() || ParseRate(input).has_value();
}

// Puts the input into the field as a user would: emptied, then typed key by key; the long
// input is pasted (typing it is no different and takes long).
void Enter(QWidget* field, const QString& input) {
    QString why;
    if (!FocusWidget(field, &why))
        return;
    QPointer<QWidget> guard(field);
    ClearField(field, &why);
    if (!guard)
        return;
    if (input.size() > 100) {
        if (auto* line = qobject_cast<QLineEdit*>(field))
            line->insert(input);
        else if (auto* combo = qobject_cast<QComboBox*>(field))
            combo->lineEdit()->insert(input);
        else if (auto* edit = qobject_cast<QTextEdit*>(field))
            edit->insertPlainText(input);
        else if (auto* plain = qobject_cast<QPlainTextEdit*>(field))
            plain->insertPlainText(input);
    } else {
        TypeText(field, input, &why);
    }
}

struct ScreenReport {
    QString screen;
    int fields = 0;
    int entries = 0;
    int presses = 0;
    int boxes = 0;
    QStringList distinctBoxes;
    QStringList faults;
};

// Records that stand in the demo: an open bill and a live receipt of each duplicate.
struct Keys {
    QString reBill, pcBill, reReceipt, pcReceipt;

    static Keys read() {
        auto first = [](const char* sql) {
            QSqlQuery q(session().DbConnection);
            return q.exec(QLatin1String(sql)) && q.next() ? q.value(0).toString() : QString();
        };
        Keys k;
        const char* open = "SELECT trim(BillNo) FROM %1 WHERE CPayFlag = ' ' AND TPayFlag = ' ' "
                           "AND SPayFlag = ' ' AND AdjFlag = ' ' ORDER BY BillNo LIMIT 1";
        k.reBill = first(QString::fromLatin1(open).arg(QLatin1String("TCMaster")).toLatin1());
        k.pcBill = first(QString::fromLatin1(open).arg(QLatin1String("PCMaster")).toLatin1());
        k.reReceipt = first("SELECT Recnum FROM TCReceipt WHERE VDate IS NULL LIMIT 1");
        k.pcReceipt = first("SELECT Recnum FROM PCReceipt WHERE VDate IS NULL LIMIT 1");
        return k;
    }
};

class Sweep {
public:
    explicit Sweep(frmLevyDeskMain* window) : m_window(window), m_keys(Keys::read()) {}

    // The screen twice: once typing and leaving only, once more pressing its accept buttons
    // after each input (a press may take fields away, as a search shows its list).
    ScreenReport run(const QString& menuItem, const ScreenEntry& entry) {
        ScreenReport report;
        report.screen = entry.screenName;
        const QByteArray before = DumpDatabase();
        m_before = before;
        g_messages->boxes.clear();
        for (const bool pressing : {false, true}) {
            m_pressing = pressing;
            runOnce(menuItem, entry, &report);
        }
        report.boxes = int(g_messages->boxes.size());
        report.faults << g_messages->sqlErrors;
        g_messages->sqlErrors.clear();
        report.distinctBoxes = g_messages->boxes;
        report.distinctBoxes.removeDuplicates();
        const QStringList changed = ChangedTables(before, DumpDatabase());
        if (!changed.isEmpty() && report.faults.isEmpty())
            report.faults
                << QStringLiteral("%1 wrote to %2").arg(entry.screenName, changed.join(u' '));
        return report;
    }

private:
    void runOnce(const QString& menuItem, const ScreenEntry& entry, ScreenReport* report) {
        bool done = false;
        // A modal screen runs its own loop: the sweep runs inside it.
        QTimer::singleShot(0, [&] {
            g_messages->opening = false;
            sweepScreen(entry, report);
            if (entry.modal)
                closeAll();
            done = true;
        });
        doing(QStringLiteral("opening %1").arg(menuItem));
        g_messages->opening = true;
        m_window->runMenuCommand(menuItem);
        while (!done) {
            QApplication::processEvents(QEventLoop::AllEvents, 50);
            ++g_beat;
        }
        closeAll();
    }

    QWidget* screenOf(const ScreenEntry& entry) {
        if (QWidget* modal = QApplication::activeModalWidget())
            return modal;
        return m_window->openScreen(entry.screenName);
    }

    void sweepScreen(const ScreenEntry& entry, ScreenReport* report) {
        QPointer<QWidget> screen = screenOf(entry);
        if (!screen)
            return; // it did not open (its question was declined, or nothing to work on)
        std::set<QString> swept;
        sweepFields(screen, entry, report, &swept, QStringLiteral("as opened"));
        // What opens more fields: an option button (the search by bill or by control), an
        // entry of a list box (the adjustment's action), a tick (a body to distribute). Then a
        // record loaded by its key opens the rest.
        QList<QPointer<QWidget>> openers;
        if (screen) {
            for (QRadioButton* option : screen->findChildren<QRadioButton*>())
                openers << option;
            for (QCheckBox* box : screen->findChildren<QCheckBox*>())
                openers << box;
        }
        for (const QPointer<QWidget>& opener : openers) {
            if (!screen || !opener || !opener->isVisible() || !opener->isEnabled())
                continue;
            doing(QStringLiteral("%1: choosing %2").arg(entry.screenName, Describe(opener)));
            QString why;
            SetTicked(opener, true, &why);
            if (screen)
                sweepFields(screen, entry, report, &swept, Describe(opener));
        }
        QList<QPointer<QComboBox>> lists;
        if (screen)
            for (QComboBox* combo : screen->findChildren<QComboBox*>())
                if (!combo->isEditable() && combo->count() < 10)
                    lists << combo;
        for (const QPointer<QComboBox>& list : lists) {
            for (int i = 0; list && i < list->count(); ++i) {
                if (!screen || !list->isVisible() || !list->isEnabled())
                    break;
                const QString text = list->itemText(i);
                doing(QStringLiteral("%1: choosing %2 %3")
                          .arg(entry.screenName, Describe(list), text));
                QString why;
                ChooseEntry(list, text, &why);
                if (screen)
                    loadKeys(screen, entry);
                if (screen)
                    sweepFields(screen, entry, report, &swept, text);
            }
        }
        if (screen)
            loadKeys(screen, entry);
        if (screen)
            sweepFields(screen, entry, report, &swept, QStringLiteral("loaded"));
    }

    // A bill or receipt that stands, typed into its key field and left: the screen loads it.
    void loadKeys(QPointer<QWidget> screen, const ScreenEntry& entry) {
        const bool pc = entry.screenName.startsWith(QLatin1String("frmPC"));
        const std::pair<const char*, QString> keys[] = {
            {"txtBillNo", pc ? m_keys.pcBill : m_keys.reBill},
            {"txtRecnum", pc ? m_keys.pcReceipt : m_keys.reReceipt},
        };
        for (const auto& [name, value] : keys) {
            // A search by bill number is chosen by its option first.
            const QString option = QStringLiteral("opt") + QLatin1String(name).mid(3);
            if (auto* opt = screen ? screen->findChild<QRadioButton*>(option) : nullptr) {
                QString why;
                if (opt->isVisible() && opt->isEnabled())
                    SetTicked(opt, true, &why);
            }
            auto* field = screen ? screen->findChild<QLineEdit*>(QLatin1String(name)) : nullptr;
            if (!field || !field->isVisible() || !field->isEnabled() || field->isReadOnly())
                continue;
            doing(QStringLiteral("%1: loading %2 %3").arg(entry.screenName, name, value));
            Enter(field, value);
            QString why;
            if (field)
                LeaveWidget(field, &why);
        }
    }

    // The fields not swept yet, with each input; in the pressing round the accept buttons are
    // pressed once every field holds the input (the fields swept before hold the last one), so
    // that nothing valid stands behind the press.
    void sweepFields(QPointer<QWidget> screen, const ScreenEntry& entry, ScreenReport* report,
                     std::set<QString>* swept, const QString& how) {
        QList<QPointer<QWidget>> fields;
        for (QWidget* f : TypedFields(screen))
            if (swept->insert(f->objectName()).second)
                fields << f;
        if (fields.isEmpty())
            return;
        if (!m_pressing)
            report->fields += int(fields.size());
        for (const QString& input : BadInputs()) {
            if (!screen)
                return;
            enterAll(fields, entry, input, report);
            if (m_pressing && !TakenAsValid(entry.screenName, input) &&
                !pressAccept(screen, entry, input, report))
                return;
            // Where a write happened is told by the input that made it.
            const QStringList changed = ChangedTables(m_before, DumpDatabase());
            if (!changed.isEmpty() && report->faults.isEmpty())
                report->faults
                    << QStringLiteral("%1 wrote to %2 on %3 (%4%5); its last boxes: %6")
                           .arg(entry.screenName, changed.join(u' '), shown(input), how,
                                m_pressing ? QStringLiteral(", pressed") : QString(),
                                g_messages->boxes.mid(g_messages->boxes.size() - 3).join(u'/'));
        }
    }

    void enterAll(const QList<QPointer<QWidget>>& fields, const ScreenEntry& entry,
                  const QString& input, ScreenReport* report) {
        for (const QPointer<QWidget>& field : fields) {
            if (!field || !field->isVisible() || !field->isEnabled())
                continue;
            doing(QStringLiteral("%1: %2 <- %3")
                      .arg(entry.screenName, field->objectName(), shown(input)));
            Enter(field, input);
            if (field) {
                QString why;
                LeaveWidget(field, &why);
            }
            ++report->entries;
        }
    }

    // False when the screen closed.
    bool pressAccept(QPointer<QWidget> screen, const ScreenEntry& entry, const QString& input,
                     ScreenReport* report) {
        for (const QString& name : AcceptButtons) {
            auto* button = screen ? screen->findChild<QPushButton*>(name) : nullptr;
            if (!button || !button->isVisible() || !button->isEnabled())
                continue;
            doing(QStringLiteral("%1: %2 with every field %3")
                      .arg(entry.screenName, name, shown(input)));
            QString why;
            ClickWidget(button, &why);
            ++report->presses;
        }
        return !screen.isNull();
    }

    void closeAll() {
        doing(QStringLiteral("closing"));
        for (int tries = 0; tries < 20; ++tries) {
            if (QWidget* popup = QApplication::activePopupWidget()) {
                popup->close();
            } else if (QWidget* modal = QApplication::activeModalWidget()) {
                if (auto* dialog = qobject_cast<QDialog*>(modal))
                    dialog->reject();
                else
                    modal->close();
            } else {
                break;
            }
            QApplication::processEvents();
        }
        for (QMdiSubWindow* sub : m_window->mdiArea()->subWindowList()) {
            sub->close();
            QApplication::processEvents();
        }
        for (QMdiSubWindow* sub : m_window->mdiArea()->subWindowList())
            delete sub; // one that refused to close (its question declined)
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }

    frmLevyDeskMain* m_window;
    Keys m_keys;
    bool m_pressing = false;
    QByteArray m_before;
};

QString GroupOf(const QString& item) {
    if (item.contains(QLatin1String("Distribution")))
        return QStringLiteral("distribution");
    if (item.contains(QLatin1String("Reports")) || item.startsWith(QLatin1String("mnuAct169")))
        return QStringLiteral("reports");
    if (item.startsWith(QLatin1String("mnuRE")))
        return QStringLiteral("desk");
    if (item.startsWith(QLatin1String("mnuPC")))
        return QStringLiteral("percapita");
    if (item.contains(QLatin1String("Millages")) || item.contains(QLatin1String("Special")))
        return QStringLiteral("rates");
    return QStringLiteral("utilities");
}

// Qt's own warnings of a query used wrongly (a value read from a failed query, a statement
// that did not prepare), with what the sweep was doing.
QStringList g_queryWarnings;

void keepQueryWarnings(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && text.startsWith(QLatin1String("QSqlQuery::")))
        g_queryWarnings << g_doing + QStringLiteral(": ") + text;
    else if (type != QtDebugMsg && !text.startsWith(QLatin1String("This plugin does not")))
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    qInstallMessageHandler(keepQueryWarnings);
    const QString group = app.arguments().value(1, QStringLiteral("all"));
    const bool listBoxes = app.arguments().contains(QStringLiteral("--boxes"));
    std::thread(watchdog).detach();

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
    DemoOptions demo;
    demo.parcels = 60;
    demo.persons = 40;
    QString error;
    if (!CreateDemoDatabase(path, demo, &error)) {
        std::fprintf(stderr, "demo database: %s\n", qPrintable(error));
        return 1;
    }
    Clock::setToday(QDate(2013, 10, 15));
    auto* messages = new SweepMessages;
    g_messages = messages;
    installMessageService(std::unique_ptr<MessageService>(messages));
    session().ShowBackupPrompt = false;

    auto* window = new frmLevyDeskMain;
    window->show();
    ActivateWindowOf(window);
    if (!window->start(path)) {
        std::fprintf(stderr, "the program did not start: %s\n",
                     qPrintable(messages->boxes.join(u'\n')));
        return 1;
    }

    // Every menu item that the catalog gives a screen, each screen once.
    std::map<QString, QString> screens; // screen name -> menu item
    for (QAction* action : window->findChildren<QAction*>()) {
        const QString item = action->objectName();
        const ScreenEntry* entry =
            item.startsWith(QLatin1String("mnu")) ? screenForMenuItem(item) : nullptr;
        if (entry && (group == QLatin1String("all") || GroupOf(item) == group))
            screens.emplace(entry->screenName, item);
    }
    if (screens.empty()) {
        std::fprintf(stderr, "no screens in group %s\n", qPrintable(group));
        return 1;
    }

    Sweep sweep(window);
    QStringList faults;
    int fields = 0;
    int entries = 0;
    for (const auto& [name, item] : screens) {
        const ScreenReport r = sweep.run(item, *screenForMenuItem(item));
        std::printf("%-40s %3d fields %5d entries %3d presses %4d boxes\n", qPrintable(name),
                    r.fields, r.entries, r.presses, r.boxes);
        std::fflush(stdout);
        if (listBoxes)
            for (const QString& box : r.distinctBoxes)
                std::printf("    %s\n", qPrintable(box));
        fields += r.fields;
        entries += r.entries;
        faults << r.faults;
    }
    std::printf("%zu screens, %d fields, %d entries\n", screens.size(), fields, entries);
    g_queryWarnings.removeDuplicates();
    faults << g_queryWarnings;
    for (const QString& fault : faults)
        std::printf("FAULT: %s\n", qPrintable(fault));
    std::fflush(stdout);
    session().ShowBackupPrompt = false;
    delete window;
    return faults.isEmpty() ? 0 : 1;
}
