#pragma once
// Runs one scenario file against the real program: a fresh folder and database, the commands
// stepped one per turn of the event loop, the result as the first failure or none.

#include "scenario_parser.h"

#include "core/mail.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>
#include <memory>

class QEventLoop;
class QSqlDatabase;
class QWidget;
class frmLevyDeskMain;
class ScriptedMessageService;

struct RunOptions {
    bool verbose = false; // echo each command as it runs
    bool keep = false;    // keep each scenario's folder and name it
    int timeoutSeconds = 240;
};

// What lives for the whole run of the driver: the folder for settings and the desktop, and
// the demo databases made so far (one per set of options, copied into each scenario).
class RunFolder {
public:
    RunFolder();
    bool isValid() const { return m_dir.isValid(); }
    QString path() const { return m_dir.path(); }
    // Points the desktop folder at desktopPath for the program's next questions.
    void setDesktop(const QString& desktopPath);
    // A demo database with those options, made on first use; empty with the reason on failure.
    QString demoDatabase(int parcels, int persons, quint32 seed, QString* error);

private:
    QTemporaryDir m_dir;
    QHash<QString, QString> m_demos;
};

class ScenarioRun : public QObject {
    Q_OBJECT
public:
    ScenarioRun(const QString& file, RunFolder& runFolder, const RunOptions& options);
    ~ScenarioRun() override;

    // Runs the scenario to its end or its first failure; true when every expectation held.
    bool run();
    // "FILE:LINE: expected ... but saw ..."; empty when it passed.
    QString failure() const { return m_failure; }
    int commandCount() const { return int(m_commands.size()); }
    QString folder() const { return m_folder ? m_folder->path() : QString(); }

private:
    struct Running {
        int index;
        int loopLevel;
    };
    enum class DatabaseKind { Demo, Empty, None, File };

    void step();
    void beginClosing();
    void closeTick();
    void cleanUp();
    void execute(const ScenarioCommand& c);

    void fail(const QString& where, const QString& expected, const QString& saw);
    bool failed() const { return !m_failure.isEmpty(); }
    QString where() const;
    QString programFolder() const;
    QString databasePath() const;

    // The database file as the scenario's database commands asked for it.
    bool prepareDatabase(const ScenarioCommand& c);
    bool programRunning() const;
    // Starts the program when no command has started it yet; false with a failure recorded
    // when the program is not running afterwards and the command needs it running.
    bool needProgram(const ScenarioCommand& c, bool mustRun = true);
    void startProgram(const ScenarioCommand& c);
    // Runs SQL on the program's connection when it is open, else on one of the driver's own.
    bool runSql(const ScenarioCommand& c, const QString& statement, QStringList* rows);

    QWidget* activeScreen() const;
    QWidget* findScreen(const QString& name) const;
    QObject* resolve(const ScenarioCommand& c, const QString& name);
    QWidget* resolveWidget(const ScenarioCommand& c, const QString& name);

    void doDatabase(const ScenarioCommand& c);
    void doWrite(const ScenarioCommand& c);
    void doMenu(const ScenarioCommand& c);
    void doWidgetAction(const ScenarioCommand& c);
    void doExit(const ScenarioCommand& c);
    void doExpectMessage(const ScenarioCommand& c);
    void doExpectText(const ScenarioCommand& c);
    void doExpectState(const ScenarioCommand& c);
    void doExpectScreen(const ScenarioCommand& c);
    void doExpectTitle(const ScenarioCommand& c);
    void doExpectSql(const ScenarioCommand& c);
    void doExpectFile(const ScenarioCommand& c);
    void doCall(const ScenarioCommand& c);
    // expect printed (also job K), expect jobs, expect pages, expect previewed.
    void doExpectPrinted(const ScenarioCommand& c);
    void doExpectPrintCounts(const ScenarioCommand& c);
    void doExpectPreviewed(const ScenarioCommand& c);

    // expect mail: every mail the program sent is captured here, oldest first, with the line
    // it was sent at; an expect mail takes the oldest, and one left at the end fails the run.
    struct SentMail {
        MailMessage mail;
        QString where;
    };
    void captureMail(const MailMessage& mail);
    void doExpectMail(const ScenarioCommand& c);
    void checkMailsExpected();
    QList<SentMail> m_mails;
    // select, doubleclick, expect rows, expect cell.
    bool isGridCommand(const QString& verb) const;
    void doGridCommand(const ScenarioCommand& c);

    QString m_file;
    RunFolder& m_runFolder;
    RunOptions m_options;
    QList<ScenarioCommand> m_commands;
    QString m_failure;

    std::unique_ptr<QTemporaryDir> m_folder;
    DatabaseKind m_databaseKind = DatabaseKind::Demo;
    int m_demoParcels = 1000;
    int m_demoPersons = 600;
    quint32 m_demoSeed = 2013;
    QString m_databaseSource;
    bool m_databasePrepared = false;

    ScriptedMessageService* m_messages = nullptr; // owned by the message service slot
    QPointer<frmLevyDeskMain> m_window;
    bool m_everStarted = false;

    QEventLoop* m_loop = nullptr;
    QTimer m_timer;
    QTimer m_watchdog;
    QList<Running> m_running;
    int m_next = 0;
    QString m_lastWhere;
    int m_topLoopLevel = -1;
    bool m_closing = false;
    int m_closeTicks = 0;
};
