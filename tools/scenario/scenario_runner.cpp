#include "scenario_runner.h"

#include "reports/print_capture.h"

#include "grid_actions.h"
#include "scripted_messages.h"
#include "sql_values.h"
#include "widget_actions.h"

#include "app/main_window.h"
#include "core/clock.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "core/value_functions.h"
#include "demo/demo_database.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QSqlDatabase>
#include <QThread>
#include <cstdio>
#include <cstdlib>

namespace {

// The driver's own connection, for SQL while the program's connection is not open.
constexpr const char* DriverConnection = "levydesk-scenario";
constexpr const char* DatabaseFileName = "KestLevyDsk2013.sqlite";

int loopLevel() {
    return QThread::currentThread()->loopLevel();
}

void say(const QString& text) {
    std::fprintf(stdout, "%s\n", qPrintable(text));
    std::fflush(stdout);
}

QObject* findNamed(QWidget* root, const QString& name) {
    const QList<QWidget*> widgets = root->findChildren<QWidget*>(name);
    for (QWidget* w : widgets)
        if (w->isVisible())
            return w;
    if (!widgets.isEmpty())
        return widgets.first();
    const QList<QAction*> actions = root->findChildren<QAction*>(name);
    for (QAction* a : actions)
        if (!a->isSeparator())
            return a;
    return nullptr;
}

QString rowsText(const QStringList& rows) {
    if (rows.isEmpty())
        return QStringLiteral("no rows");
    QStringList quoted;
    for (const QString& row : rows)
        quoted << QuoteForReport(row);
    return QStringLiteral("rows ") + quoted.join(QStringLiteral(", "));
}

bool copyDatabase(const QString& from, const QString& to, QString* error) {
    QFile::remove(to);
    if (!QFile::copy(from, to)) {
        *error = QStringLiteral("no copy of %1").arg(QuoteForReport(from));
        return false;
    }
    QFile::setPermissions(to, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                  QFile::ReadOther);
    return true;
}

} // namespace

// ---------------------------------------------------------------------------------------------

RunFolder::RunFolder() : m_dir(QDir::tempPath() + QStringLiteral("/levydesk-scenario-XXXXXX")) {
    if (!m_dir.isValid())
        return;
    // Settings and data of the program stay inside the run; the desktop moves per scenario.
    QDir(m_dir.path()).mkpath(QStringLiteral("config"));
    QDir(m_dir.path()).mkpath(QStringLiteral("data"));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_dir.filePath(QStringLiteral("config"))));
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_dir.filePath(QStringLiteral("data"))));
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        const QString runtime = m_dir.filePath(QStringLiteral("runtime"));
        QDir().mkpath(runtime);
        QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime));
    }
}

void RunFolder::setDesktop(const QString& desktopPath) {
    QFile dirs(m_dir.filePath(QStringLiteral("config/user-dirs.dirs")));
    if (dirs.open(QIODevice::WriteOnly | QIODevice::Truncate))
        dirs.write("XDG_DESKTOP_DIR=\"" + QFile::encodeName(desktopPath) + "\"\n");
}

QString RunFolder::demoDatabase(int parcels, int persons, quint32 seed, QString* error) {
    const QString key = QStringLiteral("demo-%1-%2-%3.sqlite").arg(parcels).arg(persons).arg(seed);
    if (const auto it = m_demos.constFind(key); it != m_demos.constEnd())
        return *it;
    QDir(m_dir.path()).mkpath(QStringLiteral("demo"));
    const QString path = m_dir.filePath(QStringLiteral("demo/") + key);
    DemoOptions options;
    options.parcels = parcels;
    options.persons = persons;
    options.seed = seed;
    if (!CreateDemoDatabase(path, options, error))
        return QString();
    m_demos.insert(key, path);
    return path;
}

// ---------------------------------------------------------------------------------------------

ScenarioRun::ScenarioRun(const QString& file, RunFolder& runFolder, const RunOptions& options)
    : m_file(file), m_runFolder(runFolder), m_options(options) {
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &ScenarioRun::step);
    m_watchdog.setSingleShot(true);
    connect(&m_watchdog, &QTimer::timeout, this, [this] {
        // Nothing can be unwound from here safely: report and leave.
        std::fprintf(stderr,
                     "%s: expected the scenario to end within %d s but saw it still running\n",
                     qPrintable(where()), m_options.timeoutSeconds);
        std::fflush(stderr);
        std::_Exit(1);
    });
}

ScenarioRun::~ScenarioRun() = default;

bool ScenarioRun::run() {
    // Print jobs are kept for the expectations instead of going to a printer; each scenario
    // counts its own jobs and previews.
    PrintCapture::setEnabled(true);
    PrintCapture::clear();
    QString error;
    if (!ParseScenarioFile(m_file, &m_commands, &error)) {
        m_failure = error;
        return false;
    }
    // A kept folder lives outside the run's own folder, which goes at the end of the run.
    m_folder = std::make_unique<QTemporaryDir>(
        m_options.keep ? QDir::tempPath() + QStringLiteral("/levydesk-scenario-kept-XXXXXX")
                       : m_runFolder.path() + QStringLiteral("/run-XXXXXX"));
    if (!m_folder->isValid()) {
        m_failure = QStringLiteral("%1:0: expected a temporary folder but saw %2")
                        .arg(m_file, m_folder->errorString());
        return false;
    }
    m_folder->setAutoRemove(!m_options.keep);
    QDir(m_folder->path()).mkpath(QStringLiteral("Desktop"));
    m_runFolder.setDesktop(m_folder->filePath(QStringLiteral("Desktop")));

    ScriptedMessageService::Host host;
    host.where = [this] { return where(); };
    host.fail = [this](const QString& at, const QString& expected, const QString& saw) {
        fail(at, expected, saw);
    };
    host.programFolder = [this] { return programFolder(); };
    auto service = std::make_unique<ScriptedMessageService>(std::move(host));
    m_messages = service.get();
    std::unique_ptr<MessageService> previous = installMessageService(std::move(service));
    // Mail is captured for the expectations, never sent.
    MailHook previousMailHook =
        InstallMailHook([this](const MailMessage& mail) { captureMail(mail); });

    QEventLoop loop;
    m_loop = &loop;
    m_topLoopLevel = loopLevel() + 1;
    m_timer.start(0);
    if (m_options.timeoutSeconds > 0)
        m_watchdog.start(m_options.timeoutSeconds * 1000);
    // Only the driver ends this loop; should anything else end it, step on.
    bool done = false;
    for (int attempt = 0; attempt < 3 && !done; ++attempt) {
        loop.exec();
        done = m_closing && !m_timer.isActive() && m_running.isEmpty();
        if (!done && !m_timer.isActive())
            m_timer.start(0);
    }
    if (!done)
        fail(where(), QStringLiteral("the event loop to run until the scenario's end"),
             QStringLiteral("it ended by the program"));
    m_watchdog.stop();
    m_loop = nullptr;

    cleanUp();
    m_messages = nullptr;
    installMessageService(std::move(previous));
    InstallMailHook(std::move(previousMailHook));
    return !failed();
}

void ScenarioRun::cleanUp() {
    if (m_messages)
        m_messages->setClosingDown(true);
    session().ShowBackupPrompt = false;
    if (m_window) {
        m_window->close();
        delete m_window.data();
    }
    const QList<QWidget*> windows = QApplication::topLevelWidgets();
    for (QWidget* w : windows) {
        if (w->isVisible())
            w->close();
        if (!w->parentWidget() && w->objectName().startsWith(QStringLiteral("frm")))
            w->deleteLater();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    CloseSessionDatabase();
    session() = Session();
    TaxDatabase::close(QString::fromLatin1(DriverConnection));
    Clock::setToday(std::nullopt);
}

// ---------------------------------------------------------------------------------------------
// Stepping

void ScenarioRun::step() {
    // Inside a command that pumps events itself: wait until it has finished.
    if (!m_running.isEmpty() && loopLevel() <= m_running.last().loopLevel) {
        m_timer.start(1);
        return;
    }
    if (m_closing) {
        closeTick();
        return;
    }
    if (failed() || m_next >= m_commands.size()) {
        beginClosing();
        closeTick();
        return;
    }
    const int index = m_next++;
    const ScenarioCommand& c = m_commands.at(index);
    if (m_options.verbose)
        say(QStringLiteral("%1: %2 %3").arg(c.where(), c.verb, c.args.join(u' ')));
    m_running.append({index, loopLevel()});
    m_lastWhere = c.where();
    // Armed before the command runs: a command that opens a modal screen has the following
    // commands run inside that screen's event loop.
    m_timer.start(0);
    execute(c);
    m_running.removeLast();
    // Re-queued behind whatever the command itself has queued.
    if (m_timer.isActive())
        m_timer.start(0);
}

void ScenarioRun::beginClosing() {
    if (!failed()) {
        const QList<ScenarioBox>& boxes = m_messages->pendingBoxes();
        const QList<ScenarioAnswer>& answers = m_messages->pendingAnswers();
        if (!boxes.isEmpty()) {
            const ScenarioBox& box = boxes.first();
            fail(box.where, QStringLiteral("an expect message for every box"),
                 QStringLiteral("the %1 %2 %3 not expected")
                     .arg(box.kind, QuoteForReport(box.title), QuoteForReport(box.text)));
        } else if (!answers.isEmpty()) {
            const ScenarioAnswer& answer = answers.first();
            fail(answer.where,
                 QStringLiteral("a question or input box to take answer %1").arg(answer.button),
                 QStringLiteral("none"));
        }
    }
    checkMailsExpected();
    m_closing = true;
    m_messages->setClosingDown(true);
    session().ShowBackupPrompt = false;
}

void ScenarioRun::closeTick() {
    ++m_closeTicks;
    if (m_closeTicks > 400) {
        std::fprintf(stderr, "%s: expected the program's windows to close but saw %s still open\n",
                     qPrintable(where()), qPrintable(Describe(QApplication::activeModalWidget())));
        std::fflush(stderr);
        std::_Exit(1);
    }
    if (QWidget* popup = QApplication::activePopupWidget()) {
        popup->close();
        m_timer.start(0);
        return;
    }
    if (QWidget* modal = QApplication::activeModalWidget()) {
        if (auto* dialog = qobject_cast<QDialog*>(modal))
            dialog->reject();
        else
            modal->close();
        m_timer.start(0);
        return;
    }
    if (loopLevel() > m_topLoopLevel || !m_running.isEmpty()) {
        // Some other loop of the program is still running; give it time to end.
        m_timer.start(10);
        return;
    }
    if (m_loop)
        m_loop->exit(0);
}

void ScenarioRun::fail(const QString& at, const QString& expected, const QString& saw) {
    if (!m_failure.isEmpty())
        return;
    m_failure = QStringLiteral("%1: expected %2 but saw %3").arg(at, expected, saw);
}

QString ScenarioRun::where() const {
    if (!m_running.isEmpty())
        return m_commands.at(m_running.last().index).where();
    if (!m_lastWhere.isEmpty())
        return m_lastWhere;
    return m_file + QStringLiteral(":0");
}

QString ScenarioRun::programFolder() const {
    return m_folder ? m_folder->path() : QString();
}

QString ScenarioRun::databasePath() const {
    return QDir(programFolder()).filePath(QLatin1String(DatabaseFileName));
}

// ---------------------------------------------------------------------------------------------
// The program and its database

bool ScenarioRun::prepareDatabase(const ScenarioCommand& c) {
    if (m_databasePrepared)
        return !failed();
    m_databasePrepared = true;
    const QString path = databasePath();
    QString error;
    switch (m_databaseKind) {
    case DatabaseKind::None:
        return true;
    case DatabaseKind::Demo: {
        const QString demo =
            m_runFolder.demoDatabase(m_demoParcels, m_demoPersons, m_demoSeed, &error);
        if (demo.isEmpty() || !copyDatabase(demo, path, &error)) {
            fail(c.where(), QStringLiteral("a demo database"), error);
            return false;
        }
        return true;
    }
    case DatabaseKind::File:
        if (!copyDatabase(m_databaseSource, path, &error)) {
            fail(c.where(), QStringLiteral("a copy of the database file"), error);
            return false;
        }
        return true;
    case DatabaseKind::Empty: {
        const QString name = QStringLiteral("levydesk-scenario-create");
        bool ok = false;
        {
            QSqlDatabase db = TaxDatabase::create(path, name, &error);
            ok = db.isValid() && db.isOpen();
        }
        TaxDatabase::close(name);
        if (!ok) {
            fail(c.where(), QStringLiteral("an empty tax database"), error);
            return false;
        }
        return true;
    }
    }
    return true;
}

bool ScenarioRun::programRunning() const {
    return m_window && m_window->isVisible();
}

void ScenarioRun::startProgram(const ScenarioCommand& c) {
    if (!prepareDatabase(c))
        return;
    m_everStarted = true;
    if (m_window)
        delete m_window.data();
    auto* window = new frmLevyDeskMain;
    m_window = window;
    window->show();
    ActivateWindowOf(window);
    const bool started = window->start(databasePath());
    // A failed start has shown its message and closed the window; the program is gone.
    if (!started && m_window && !m_window->isVisible())
        m_window->deleteLater();
}

bool ScenarioRun::needProgram(const ScenarioCommand& c, bool mustRun) {
    if (!m_everStarted)
        startProgram(c);
    if (failed())
        return false;
    if (mustRun && !programRunning()) {
        fail(c.where(), QStringLiteral("the program running"), QStringLiteral("it closed"));
        return false;
    }
    return true;
}

bool ScenarioRun::runSql(const ScenarioCommand& c, const QString& statement, QStringList* rows) {
    if (!prepareDatabase(c))
        return false;
    QString error;
    QSqlDatabase program = session().DbConnection;
    if (program.isValid() && program.isOpen()) {
        if (!RegisterScenarioSqlFunctions(program, &error)) {
            fail(c.where(), QStringLiteral("the money() and dollars() functions"), error);
            return false;
        }
        if (!RunScenarioSql(program, statement, rows, &error)) {
            fail(c.where(), QStringLiteral("the statement to run"), QuoteForReport(error));
            return false;
        }
        return true;
    }
    bool ok = false;
    {
        QSqlDatabase db =
            TaxDatabase::open(databasePath(), QLatin1String(DriverConnection), &error);
        if (!db.isValid() || !db.isOpen())
            fail(c.where(), QStringLiteral("the database to open"), QuoteForReport(error));
        else if (!RegisterScenarioSqlFunctions(db, &error))
            fail(c.where(), QStringLiteral("the money() and dollars() functions"), error);
        else if (!RunScenarioSql(db, statement, rows, &error))
            fail(c.where(), QStringLiteral("the statement to run"), QuoteForReport(error));
        else
            ok = true;
    }
    TaxDatabase::close(QLatin1String(DriverConnection));
    return ok;
}

// ---------------------------------------------------------------------------------------------
// Screens and widgets

QWidget* ScenarioRun::activeScreen() const {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (!programRunning() || !m_window->mdiArea())
        return nullptr;
    QMdiArea* area = m_window->mdiArea();
    QMdiSubWindow* sub = area->activeSubWindow();
    if (!sub || !sub->isVisible())
        sub = area->currentSubWindow();
    if (!sub || !sub->isVisible()) {
        sub = nullptr;
        const QList<QMdiSubWindow*> stack = area->subWindowList(QMdiArea::StackingOrder);
        for (auto it = stack.rbegin(); it != stack.rend() && !sub; ++it)
            if ((*it)->isVisible())
                sub = *it;
    }
    return sub ? sub->widget() : nullptr;
}

QWidget* ScenarioRun::findScreen(const QString& name) const {
    if (programRunning() && (name == m_window->objectName() || name == u"frmLevyDeskMain"))
        return m_window;
    if (m_window) {
        if (QWidget* screen = m_window->openScreen(name); screen && screen->isVisible())
            return screen;
    }
    const QList<QWidget*> windows = QApplication::topLevelWidgets();
    for (QWidget* w : windows)
        if (w->isVisible() && w->objectName() == name)
            return w;
    return nullptr;
}

QObject* ScenarioRun::resolve(const ScenarioCommand& c, const QString& name) {
    const qsizetype dot = name.indexOf(u'.');
    if (dot > 0) {
        const QString screenName = name.left(dot);
        const QString child = name.mid(dot + 1);
        QWidget* screen = findScreen(screenName);
        if (!screen) {
            fail(c.where(), QStringLiteral("the screen %1 open").arg(screenName),
                 QStringLiteral("it closed"));
            return nullptr;
        }
        if (child.isEmpty())
            return screen;
        if (QObject* found = findNamed(screen, child))
            return found;
        fail(c.where(), QStringLiteral("a widget %1 on %2").arg(child, screenName),
             QStringLiteral("none"));
        return nullptr;
    }
    QWidget* screen = activeScreen();
    if (screen) {
        if (screen->objectName() == name)
            return screen;
        if (QObject* found = findNamed(screen, name))
            return found;
    }
    if (m_window) {
        if (QAction* item = m_window->menuItem(name))
            return item;
    }
    if (QWidget* other = findScreen(name))
        return other;
    if (!screen && programRunning()) {
        if (QObject* found = findNamed(m_window, name))
            return found;
    }
    fail(c.where(),
         QStringLiteral("a widget %1 on %2")
             .arg(name, screen ? Describe(screen) : QStringLiteral("the active screen")),
         screen ? QStringLiteral("none") : QStringLiteral("no screen open"));
    return nullptr;
}

QWidget* ScenarioRun::resolveWidget(const ScenarioCommand& c, const QString& name) {
    QObject* found = resolve(c, name);
    if (!found)
        return nullptr;
    if (auto* w = qobject_cast<QWidget*>(found))
        return w;
    fail(c.where(), QStringLiteral("%1 to be a widget").arg(name),
         QStringLiteral("a menu item (use menu)"));
    return nullptr;
}

// ---------------------------------------------------------------------------------------------
// Commands

void ScenarioRun::execute(const ScenarioCommand& c) {
    const QString& v = c.verb;
    if (v == u"database")
        doDatabase(c);
    else if (v == u"sql")
        runSql(c, c.args.first(), nullptr);
    else if (v == u"write")
        doWrite(c);
    else if (v == u"today")
        Clock::setToday(QDate::fromString(c.args.first(), QStringLiteral("MM/dd/yyyy")));
    else if (v == u"start") {
        if (programRunning())
            fail(c.where(), QStringLiteral("the program closed before start"),
                 QStringLiteral("it running"));
        else
            startProgram(c);
    } else if (v == u"exit")
        doExit(c);
    else if (v == u"menu")
        doMenu(c);
    else if (v == u"type" || v == u"clear" || v == u"leave" || v == u"click" || v == u"tick" ||
             v == u"untick" || v == u"choose")
        doWidgetAction(c);
    else if (v == u"answer") {
        static const QHash<QString, QString> names{
            {"yes", "Yes"}, {"no", "No"}, {"ok", "OK"}, {"cancel", "Cancel"}};
        ScenarioAnswer answer;
        answer.button = names.value(c.args.first().toLower());
        if (c.args.size() > 1)
            answer.text = c.args.at(1);
        answer.where = c.where();
        m_messages->queueAnswer(answer);
    } else if (v == u"expect message")
        doExpectMessage(c);
    else if (v == u"expect text")
        doExpectText(c);
    else if (v == u"expect checked" || v == u"expect unchecked" || v == u"expect enabled" ||
             v == u"expect disabled" || v == u"expect visible" || v == u"expect hidden")
        doExpectState(c);
    else if (v == u"expect open" || v == u"expect closed")
        doExpectScreen(c);
    else if (v == u"expect title")
        doExpectTitle(c);
    else if (v == u"expect sql")
        doExpectSql(c);
    else if (v == u"expect printed")
        doExpectPrinted(c);
    else if (v == u"expect jobs" || v == u"expect pages")
        doExpectPrintCounts(c);
    else if (v == u"expect previewed")
        doExpectPreviewed(c);
    else if (v == u"expect barcode") {
    } else if (v == u"expect barcode") {
        if (!PrintCapture::lastJobHasBarcode(c.args.first()))
            fail(c.where(), QStringLiteral("bar code %1").arg(QuoteForReport(c.args.first())),
                 PrintCapture::jobCount() == 0
                     ? QStringLiteral("no print job")
                     : QStringLiteral("bar codes ") +
                           PrintCapture::lastJobBarcodes().join(QStringLiteral(", ")));
    } else if (v == u"expect file")
        doExpectFile(c);
    else if (v == u"expect mail")
        doExpectMail(c);
    else if (v == u"call")
        doCall(c);
    else if (isGridCommand(v))
        doGridCommand(c);
    else
        fail(c.where(), QStringLiteral("a command"), QuoteForReport(v));
}

void ScenarioRun::doDatabase(const ScenarioCommand& c) {
    if (m_databasePrepared) {
        fail(c.where(), QStringLiteral("database before any command that uses the database"),
             QStringLiteral("it after one"));
        return;
    }
    const QString kind = c.args.first();
    if (kind == u"none") {
        m_databaseKind = DatabaseKind::None;
    } else if (kind == u"empty") {
        m_databaseKind = DatabaseKind::Empty;
    } else if (kind == u"file") {
        m_databaseKind = DatabaseKind::File;
        m_databaseSource =
            QFileInfo(QFileInfo(c.file).absoluteDir(), c.args.at(1)).absoluteFilePath();
        if (!QFileInfo(m_databaseSource).isFile())
            fail(c.where(), QStringLiteral("a database file %1").arg(QuoteForReport(c.args.at(1))),
                 QStringLiteral("no such file"));
    } else {
        m_databaseKind = DatabaseKind::Demo;
        m_demoParcels = 1000;
        m_demoPersons = 600;
        m_demoSeed = 2013;
        for (int i = 1; i + 1 < c.args.size(); i += 2) {
            const qlonglong n = c.args.at(i + 1).toLongLong();
            if (c.args.at(i) == u"parcels")
                m_demoParcels = int(n);
            else if (c.args.at(i) == u"persons")
                m_demoPersons = int(n);
            else
                m_demoSeed = quint32(n);
        }
    }
}

void ScenarioRun::doWrite(const ScenarioCommand& c) {
    const QString path = QDir(programFolder()).absoluteFilePath(c.args.at(0));
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(c.args.at(1).toUtf8()) < 0) {
        fail(c.where(), QStringLiteral("to write %1").arg(QuoteForReport(c.args.at(0))),
             QuoteForReport(file.errorString()));
    }
}

void ScenarioRun::doExit(const ScenarioCommand& c) {
    if (!needProgram(c))
        return;
    QPointer<frmLevyDeskMain> window = m_window;
    window->close();
    if (window && !window->isVisible())
        window->deleteLater();
}

void ScenarioRun::doMenu(const ScenarioCommand& c) {
    if (!needProgram(c))
        return;
    const QString& name = c.args.first();
    QPointer<frmLevyDeskMain> window = m_window;
    if (window->runMenuCommand(name))
        return;
    QString saw = QStringLiteral("the program closed");
    if (window) {
        QAction* item = window->menuItem(name);
        saw = !item                ? QStringLiteral("no such menu item")
              : item->menu()       ? QStringLiteral("a submenu, not a command")
              : !item->isVisible() ? QStringLiteral("it hidden")
              : !item->isEnabled() ? QStringLiteral("it disabled")
                                   : QStringLiteral("it in a hidden menu");
    }
    fail(c.where(), QStringLiteral("menu item %1 to run").arg(name), saw);
}

void ScenarioRun::doWidgetAction(const ScenarioCommand& c) {
    if (!needProgram(c))
        return;
    QWidget* widget = resolveWidget(c, c.args.first());
    if (!widget)
        return;
    const QString& v = c.verb;
    const QString name = c.args.first();
    QString why;
    bool ok = false;
    QString what;
    if (v == u"type") {
        what = QStringLiteral("to type %1 into %2").arg(QuoteForReport(c.args.at(1)), name);
        ok = TypeText(widget, c.args.at(1), &why);
    } else if (v == u"clear") {
        what = QStringLiteral("to clear %1").arg(name);
        ok = ClearField(widget, &why);
    } else if (v == u"leave") {
        what = QStringLiteral("to leave %1").arg(name);
        ok = LeaveWidget(widget, &why);
    } else if (v == u"click") {
        what = QStringLiteral("to click %1").arg(name);
        ok = ClickWidget(widget, &why);
    } else if (v == u"tick" || v == u"untick") {
        what = QStringLiteral("to %1 %2").arg(v, name);
        ok = SetTicked(widget, v == u"tick", &why);
    } else {
        what = QStringLiteral("to choose %1 in %2").arg(QuoteForReport(c.args.at(1)), name);
        ok = ChooseEntry(widget, c.args.at(1), &why);
    }
    if (!ok)
        fail(c.where(), what, why);
}

void ScenarioRun::doExpectMessage(const ScenarioCommand& c) {
    const QString& title = c.args.at(0);
    const QString& text = c.args.at(1);
    const QString expected =
        QStringLiteral("message %1 %2").arg(QuoteForReport(title), QuoteForReport(text));
    const std::optional<ScenarioBox> box = m_messages->takeBox();
    if (!box) {
        fail(c.where(), expected, QStringLiteral("no box"));
        return;
    }
    if (!TitleMatches(title, box->title) || !TextMatches(text, box->text))
        fail(
            c.where(), expected,
            QStringLiteral("the %1 %2 %3 (shown at %4)")
                .arg(box->kind, QuoteForReport(box->title), QuoteForReport(box->text), box->where));
}

void ScenarioRun::doExpectText(const ScenarioCommand& c) {
    if (!needProgram(c))
        return;
    QObject* found = resolve(c, c.args.at(0));
    if (!found)
        return;
    const std::optional<QString> text = WidgetText(found);
    const std::optional<QString> caption = WidgetCaption(found);
    const QString& expected = c.args.at(1);
    const QString what =
        QStringLiteral("%1 to show %2").arg(c.args.at(0), QuoteForReport(expected));
    if (!text) {
        fail(c.where(), what, QStringLiteral("%1, which shows no text").arg(Describe(found)));
        return;
    }
    if (!TextMatches(expected, *text) && !TextMatches(expected, caption.value_or(*text)))
        fail(c.where(), what, QuoteForReport(*text));
}

void ScenarioRun::doExpectState(const ScenarioCommand& c) {
    if (!needProgram(c))
        return;
    QObject* found = resolve(c, c.args.at(0));
    if (!found)
        return;
    const QString state = c.verb.mid(7);
    auto* widget = qobject_cast<QWidget*>(found);
    auto* action = qobject_cast<QAction*>(found);
    bool actual = false;
    QString yes, no;
    if (state == u"checked" || state == u"unchecked") {
        auto* button = qobject_cast<QAbstractButton*>(found);
        if (!button && !action) {
            fail(c.where(), QStringLiteral("%1 %2").arg(c.args.at(0), state),
                 QStringLiteral("%1, which is no check box or option button").arg(Describe(found)));
            return;
        }
        actual = button ? button->isChecked() : action->isChecked();
        yes = QStringLiteral("checked");
        no = QStringLiteral("unchecked");
    } else if (state == u"enabled" || state == u"disabled") {
        actual = widget ? widget->isEnabled() : action->isEnabled();
        yes = QStringLiteral("enabled");
        no = QStringLiteral("disabled");
    } else {
        actual = widget ? widget->isVisible() : action->isVisible();
        yes = QStringLiteral("visible");
        no = QStringLiteral("hidden");
    }
    const bool wanted = state == yes;
    if (actual != wanted)
        fail(c.where(), QStringLiteral("%1 %2").arg(c.args.at(0), state),
             QStringLiteral("it %1").arg(actual ? yes : no));
}

void ScenarioRun::doExpectScreen(const ScenarioCommand& c) {
    if (!needProgram(c, false))
        return;
    const QString& name = c.args.at(0);
    const bool open = findScreen(name) != nullptr;
    const bool wanted = c.verb == u"expect open";
    if (open != wanted)
        fail(c.where(), QStringLiteral("%1 %2").arg(name, wanted ? "open" : "closed"),
             QStringLiteral("it %1").arg(open ? "open" : "closed"));
}

void ScenarioRun::doExpectTitle(const ScenarioCommand& c) {
    if (!needProgram(c, false))
        return;
    const QString& name = c.args.at(0);
    QWidget* screen = findScreen(name);
    if (!screen) {
        fail(c.where(), QStringLiteral("%1 open").arg(name), QStringLiteral("it closed"));
        return;
    }
    QString title = screen->windowTitle();
    if (auto* sub = qobject_cast<QMdiSubWindow*>(screen->parentWidget()); sub && title.isEmpty())
        title = sub->windowTitle();
    if (!TextMatches(c.args.at(1), title))
        fail(c.where(),
             QStringLiteral("the title of %1 to read %2").arg(name, QuoteForReport(c.args.at(1))),
             QuoteForReport(title));
}

void ScenarioRun::doExpectSql(const ScenarioCommand& c) {
    QStringList rows;
    if (!runSql(c, c.args.first(), &rows))
        return;
    const QStringList expected = c.args.mid(1);
    bool same = expected.size() == rows.size();
    for (int i = 0; same && i < rows.size(); ++i)
        same = TextMatches(expected.at(i), rows.at(i));
    if (!same)
        fail(c.where(), rowsText(expected), rowsText(rows));
}

void ScenarioRun::doExpectFile(const ScenarioCommand& c) {
    const QString full = QDir(programFolder()).absoluteFilePath(c.args.at(0));
    const QFileInfo info(full);
    QStringList candidates;
    if (info.fileName().contains(u'*') || info.fileName().contains(u'?')) {
        const QDir dir = info.absoluteDir();
        for (const QString& name : dir.entryList({info.fileName()}, QDir::Files, QDir::Name))
            candidates << dir.filePath(name);
    } else if (info.isFile()) {
        candidates << full;
    }
    const QString what = c.args.size() > 1
                             ? QStringLiteral("a file %1 holding %2")
                                   .arg(QuoteForReport(c.args.at(0)), QuoteForReport(c.args.at(1)))
                             : QStringLiteral("a file %1").arg(QuoteForReport(c.args.at(0)));
    if (candidates.isEmpty()) {
        fail(c.where(), what, QStringLiteral("no such file"));
        return;
    }
    if (c.args.size() < 2)
        return;
    for (const QString& path : candidates) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        if (QString::fromUtf8(bytes).contains(c.args.at(1)) ||
            QString::fromLatin1(bytes).contains(c.args.at(1)))
            return;
    }
    fail(c.where(), what,
         candidates.size() == 1 ? QStringLiteral("the file without it")
                                : QStringLiteral("%1 files without it").arg(candidates.size()));
}

void ScenarioRun::doCall(const ScenarioCommand& c) {
    const int eq = CallSeparatorIndex(c);
    const QString function = c.args.first();
    const QStringList args = c.args.mid(1, eq - 1);
    const QString& expected = c.args.at(eq + 1);
    QStringList shown;
    for (const QString& arg : args)
        shown << QuoteForReport(arg);
    const QString what =
        QStringLiteral("%1(%2) to give %3")
            .arg(function, shown.join(QStringLiteral(", ")), QuoteForReport(expected));
    const std::optional<QString> result = CallValueFunction(function, args);
    if (!result)
        fail(c.where(), what, QStringLiteral("no result (an unknown function or bad arguments)"));
    else if (!TextMatches(expected, *result))
        fail(c.where(), what, QuoteForReport(*result));
}

// ---------------------------------------------------------------------------------------------
// Mail

namespace {

QString describeMail(const MailMessage& mail) {
    return QStringLiteral("the mail to %1 %2 with attachment %3")
        .arg(QuoteForReport(mail.to), QuoteForReport(mail.subject),
             QuoteForReport(mail.attachmentName));
}

} // namespace

void ScenarioRun::captureMail(const MailMessage& mail) {
    m_mails.append({mail, where()});
}

void ScenarioRun::doExpectMail(const ScenarioCommand& c) {
    const QString& to = c.args.at(0);
    const QString& subject = c.args.at(1);
    QString expected =
        QStringLiteral("mail to %1 %2").arg(QuoteForReport(to), QuoteForReport(subject));
    if (c.args.size() > 2)
        expected += QStringLiteral(" with attachment %1").arg(QuoteForReport(c.args.at(2)));
    if (m_mails.isEmpty()) {
        fail(c.where(), expected, QStringLiteral("no mail"));
        return;
    }
    const SentMail sent = m_mails.takeFirst();
    const bool same = TextMatches(to, sent.mail.to) && TextMatches(subject, sent.mail.subject) &&
                      (c.args.size() < 3 || TextMatches(c.args.at(2), sent.mail.attachmentName));
    if (!same)
        fail(c.where(), expected,
             QStringLiteral("%1 (sent at %2)").arg(describeMail(sent.mail), sent.where));
}

void ScenarioRun::checkMailsExpected() {
    if (failed() || m_mails.isEmpty())
        return;
    const SentMail& sent = m_mails.first();
    fail(sent.where, QStringLiteral("an expect mail for every mail"),
         QStringLiteral("%1 not expected").arg(describeMail(sent.mail)));
}

// Print jobs and previews

void ScenarioRun::doExpectPrinted(const ScenarioCommand& c) {
    const bool numbered = c.args.size() == 3;
    const QString& text = c.args.last();
    if (!numbered) {
        if (!PrintCapture::lastJobPrinted(text))
            fail(c.where(), QStringLiteral("printed %1").arg(QuoteForReport(text)),
                 PrintCapture::jobCount() == 0
                     ? QStringLiteral("no print job")
                     : QStringLiteral("these lines:\n") + PrintCapture::lastJobLines().join(u'\n'));
        return;
    }
    const int k = c.args.at(1).toInt();
    if (PrintCapture::jobPrinted(k, text))
        return;
    const Recording* job = PrintCapture::job(k);
    fail(c.where(), QStringLiteral("job %1 printed %2").arg(k).arg(QuoteForReport(text)),
         job ? QStringLiteral("these lines:\n") + PrintCapture::linesOf(job).join(u'\n')
             : QStringLiteral("%1 print jobs").arg(PrintCapture::jobCount()));
}

void ScenarioRun::doExpectPrintCounts(const ScenarioCommand& c) {
    const int wanted = c.args.first().toInt();
    if (c.verb == u"expect jobs") {
        const int seen = PrintCapture::jobCount();
        if (seen != wanted)
            fail(c.where(), QStringLiteral("%1 print jobs").arg(wanted),
                 QStringLiteral("%1").arg(seen));
        return;
    }
    if (PrintCapture::jobCount() == 0) {
        fail(c.where(), QStringLiteral("%1 pages").arg(wanted), QStringLiteral("no print job"));
        return;
    }
    const int seen = PrintCapture::lastJobPages();
    if (seen != wanted)
        fail(c.where(), QStringLiteral("%1 pages in the last print job").arg(wanted),
             QStringLiteral("%1").arg(seen));
}

void ScenarioRun::doExpectPreviewed(const ScenarioCommand& c) {
    const QString& text = c.args.first();
    if (PrintCapture::previewed(text))
        return;
    const Recording* preview = PrintCapture::lastPreview();
    fail(c.where(), QStringLiteral("previewed %1").arg(QuoteForReport(text)),
         preview ? QStringLiteral("these lines:\n") + PrintCapture::linesOf(preview).join(u'\n')
                 : QStringLiteral("no preview"));
}

// Grids and lists

bool ScenarioRun::isGridCommand(const QString& verb) const {
    return verb == u"select" || verb == u"doubleclick" || verb == u"expect rows" ||
           verb == u"expect cell";
}

void ScenarioRun::doGridCommand(const ScenarioCommand& c) {
    if (!needProgram(c))
        return;
    const QString& name = c.args.first();
    QWidget* widget = resolveWidget(c, name);
    if (!widget)
        return;
    const QString& v = c.verb;
    QString why;
    if (v == u"select") {
        const int n = c.args.at(1).toInt();
        if (!SelectRow(widget, n, &why))
            fail(c.where(), QStringLiteral("to select row %1 of %2").arg(n).arg(name), why);
    } else if (v == u"doubleclick") {
        if (!DoubleClickWidget(widget, &why))
            fail(c.where(), QStringLiteral("to double-click %1").arg(name), why);
    } else if (v == u"expect rows") {
        const int wanted = c.args.at(1).toInt();
        const std::optional<int> rows = RowCount(widget, &why);
        const QString what =
            QStringLiteral("%1 holding %2 row%3").arg(name).arg(wanted).arg(wanted == 1 ? "" : "s");
        if (!rows)
            fail(c.where(), what, why);
        else if (*rows != wanted)
            fail(c.where(), what, QStringLiteral("%1 row%2").arg(*rows).arg(*rows == 1 ? "" : "s"));
    } else {
        const QString& column = c.args.at(1);
        const QString& expected = c.args.at(2);
        const QString what = QStringLiteral("the current row of %1 to show %2 in column %3")
                                 .arg(name, QuoteForReport(expected), QuoteForReport(column));
        const std::optional<QString> text = CurrentCellText(widget, column, &why);
        if (!text)
            fail(c.where(), what, why);
        else if (!TextMatches(expected, *text))
            fail(c.where(), what, QuoteForReport(*text));
    }
}
