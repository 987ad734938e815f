// The scenario driver's own parts: reading scenario lines, the SQL amount functions, the
// scripted message service, the widget actions under the offscreen platform, and the whole
// driver failing where a scenario is wrong.

#include "grid_actions.h"
#include "scenario_parser.h"
#include "scripted_messages.h"
#include "sql_values.h"
#include "widget_actions.h"

#include "support/test_support.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QGroupBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>
#include <cstdint>
#include <limits>

namespace {

// Counts the focus-outs a widget receives.
class FocusOutCounter : public QObject {
public:
    explicit FocusOutCounter(QWidget* w) { w->installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::FocusOut)
            ++count;
        return false;
    }
};

// A screen in a client area, as the program shows its screens.
struct Form {
    QMainWindow window;
    QMdiArea* area = nullptr;
    QWidget* screen = nullptr;
    QLineEdit* first = nullptr;
    QLineEdit* locked = nullptr; // disabled: the tab order passes it by
    QLineEdit* last = nullptr;
    QCheckBox* box = nullptr;
    QComboBox* combo = nullptr;
    QGroupBox* frame = nullptr;
    QRadioButton* optA = nullptr;
    QRadioButton* optB = nullptr;
    QPushButton* button = nullptr;

    Form() {
        area = new QMdiArea;
        window.setCentralWidget(area);
        screen = named(new QWidget, "frmTest");
        auto* layout = new QVBoxLayout(screen);
        first = named(new QLineEdit, "txtFirst");
        locked = named(new QLineEdit, "txtLocked");
        locked->setEnabled(false);
        last = named(new QLineEdit, "txtLast");
        box = named(new QCheckBox("&Desktop"), "chkDesktop");
        combo = named(new QComboBox, "cboOrder");
        combo->addItems({"County", "Township", "School"});
        frame = named(new QGroupBox("Order"), "fraOrder");
        auto* frameLayout = new QVBoxLayout(frame);
        optA = new QRadioButton("&Receipt Number");
        optB = new QRadioButton("&Bill Number");
        optA->setChecked(true);
        frameLayout->addWidget(optA);
        frameLayout->addWidget(optB);
        button = named(new QPushButton("E&xit"), "cmdExit");
        for (QWidget* w :
             std::initializer_list<QWidget*>{first, locked, last, box, combo, frame, button})
            layout->addWidget(w);
        area->addSubWindow(screen)->show();
        window.resize(800, 600);
        window.show();
        QApplication::setActiveWindow(&window);
    }

    template <class W> static W* named(W* widget, const char* name) {
        widget->setObjectName(QString::fromLatin1(name));
        return widget;
    }
};

QString driverPath() {
    return QStringLiteral(LEVYDESK_SCENARIO_EXE);
}

struct DriverResult {
    int exitCode = -1;
    QString out;
    QString err;
};

DriverResult runDriver(const QStringList& args) {
    QProcess process;
    process.start(driverPath(), args);
    DriverResult result;
    if (!process.waitForFinished(240000))
        return result;
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

} // namespace

class TestScenarioDriver : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void splitLine_data();
    void splitLine();
    void parseErrors_data();
    void parseErrors();
    void parseForms();
    void includes();
    void textMatching();

    void decimalToUnits_data();
    void decimalToUnits();
    void unitsToDollars_data();
    void unitsToDollars();
    void realText_data();
    void realText();
    void sqlFunctions();

    void scriptedAnswers();

    void focusAndLeave();
    void typeClearAndKeys();
    void tickChooseClick();

    void gridActions();

    void failingScenarios_data();
    void failingScenarios();
    void severalFiles();
};

// ---------------------------------------------------------------------------------------------
// Reading scenarios

void TestScenarioDriver::splitLine_data() {
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("tokens");
    QTest::addColumn<QString>("quotedFlags");
    QTest::addColumn<bool>("ok");

    AddRow("bare words", "txtBillNo  12345", QStringList{"txtBillNo", "12345"}, "00", true);
    AddRow("quoted with blanks", R"(* "Backup Data")", QStringList{"*", "Backup Data"}, "01", true);
    AddRow("escaped quote and backslash", R"("say \"hi\"" "C:\\dir")",
           QStringList{"say \"hi\"", "C:\\dir"}, "11", true);
    AddRow("line break and tab", R"("a\nb\tc")", QStringList{"a\nb\tc"}, "1", true);
    AddRow("carriage return", R"("a\r\nb")", QStringList{"a\r\nb"}, "1", true);
    AddRow("other backslash stays", R"("\Distributions\RE")", QStringList{"\\Distributions\\RE"},
           "1", true);
    AddRow("empty quoted", R"(x "")", QStringList{"x", ""}, "01", true);
    AddRow("quote inside a bare word", R"(ab"c)", QStringList{"ab\"c"}, "0", true);
    AddRow("unclosed", R"(x "abc)", QStringList{}, "", false);
    AddRow("glued after quote", R"("abc"def)", QStringList{}, "", false);
}

void TestScenarioDriver::splitLine() {
    QFETCH(QString, line);
    QFETCH(QStringList, tokens);
    QFETCH(QString, quotedFlags);
    QFETCH(bool, ok);
    QStringList got;
    QList<bool> quoted;
    QString error;
    QCOMPARE(SplitScenarioLine(line, &got, &quoted, &error), ok);
    if (!ok) {
        QVERIFY(error.startsWith("expected "));
        return;
    }
    QCOMPARE(got, tokens);
    QString flags;
    for (bool q : quoted)
        flags += q ? u'1' : u'0';
    QCOMPARE(flags, quotedFlags);
}

void TestScenarioDriver::parseErrors_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");

    AddRow("unknown command", "# set-up\n\nfrobnicate x",
           "s.scn:3: expected a command but saw \"frobnicate\"");
    AddRow("unknown expectation", "expect colour x", "s.scn:1: expected expect message...");
    AddRow("too few operands", "database demo\ntype txtBillNo",
           "s.scn:2: expected 2 operands after type but saw 1 operand");
    AddRow("too many operands", "click a b", "s.scn:1: expected 1 operand after click...");
    AddRow("expect sql needs a query", "expect sql", "s.scn:1: expected at least 1...");
    AddRow("bad date", "today 13/01/2013",
           "s.scn:1: expected a date MM/DD/YYYY but saw \"13/01/2013\"");
    AddRow("bad answer", "answer Maybe",
           "s.scn:1: expected Yes, No, OK or Cancel but saw \"Maybe\"");
    AddRow("bad database", "database full", "s.scn:1: expected database demo...");
    AddRow("demo option without number", "database demo parcels",
           "s.scn:1: expected a number after parcels...");
    AddRow("demo option twice", "database demo seed 1 seed 2", "s.scn:1: expected seed once...");
    AddRow("demo zero parcels", "database demo parcels 0",
           "s.scn:1: expected a whole number of 1 or more...");
    AddRow("call without result", "call RoundTo 1 2", "s.scn:1: expected \"=\" and the result...");
    AddRow("call with two results", "call RoundTo 1 2 = 1 2",
           "s.scn:1: expected one result after \"=\"...");
    AddRow("sql without statement", "sql   ", "s.scn:1: expected a statement...");
    AddRow("expect mail needs a subject", "expect mail support@ars.example.org",
           "s.scn:1: expected 2 to 3 operands after expect mail...");
    AddRow("printed job without its number", "expect printed job \"X\"",
           "s.scn:1: expected expect printed \"TEXT\" or expect printed job K \"TEXT\"...");
    AddRow("printed with a quoted job", "expect printed \"job\" 1 \"X\"",
           "s.scn:1: expected expect printed \"TEXT\" or expect printed job K...");
    AddRow("printed job zero", "expect printed job 0 \"X\"",
           "s.scn:1: expected a job number 1 or more but saw \"0\"");
    AddRow("jobs not a number", "expect jobs many",
           "s.scn:1: expected a number of jobs but saw \"many\"");
    AddRow("pages below zero", "expect pages -1",
           "s.scn:1: expected a number of pages but saw \"-1\"");
    AddRow("unclosed quote", "expect message \"Backup",
           "s.scn:1: expected a closing quote but saw the end of the line");
    AddRow("select row 0", "select dtgMasterList 0",
           "s.scn:1: expected a row number of 1 or more but saw \"0\"");
    AddRow("select without row", "select dtgMasterList",
           "s.scn:1: expected 2 operands after select but saw 1 operand");
    AddRow("select a word", "select dtgMasterList first",
           "s.scn:1: expected a row number of 1 or more but saw \"first\"");
    AddRow("doubleclick two", "doubleclick a b",
           "s.scn:1: expected 1 operand after doubleclick but saw 2 operands");
    AddRow("expect rows negative", "expect rows dtgMasterList -1",
           "s.scn:1: expected a whole number of rows but saw \"-1\"");
}

void TestScenarioDriver::parseErrors() {
    QFETCH(QString, text);
    QFETCH(QString, error);
    QList<ScenarioCommand> commands;
    QString got;
    QVERIFY(!ParseScenarioText(text, "s.scn", &commands, &got));
    QVERIFY2(TextMatches(error, got), qPrintable(got));
    QVERIFY(commands.isEmpty());
}

void TestScenarioDriver::parseForms() {
    const QString text = "\xef\xbb\xbf# comment\n"
                         "  sql UPDATE tbl_County SET County = \"A B\"  \n"
                         "sql \"DELETE FROM Millfile\"\n"
                         "expect sql \"SELECT a, b FROM t\" \"1|x\" 2|y\n"
                         "call PadFormat \"=\" \"####0\" = \"    =\"\r\n"
                         "expect message * \"Done...\"\n";
    QList<ScenarioCommand> commands;
    QString error;
    QVERIFY2(ParseScenarioText(QString::fromUtf8(text.toLatin1()), "f.scn", &commands, &error),
             qPrintable(error));
    QCOMPARE(commands.size(), 5);

    // A statement stands as written, quotes inside it and all; a wholly quoted one is unquoted.
    QCOMPARE(commands[0].verb, QString("sql"));
    QCOMPARE(commands[0].args, QStringList{"UPDATE tbl_County SET County = \"A B\""});
    QCOMPARE(commands[0].where(), QString("f.scn:2"));
    QCOMPARE(commands[1].args, QStringList{"DELETE FROM Millfile"});

    QCOMPARE(commands[2].verb, QString("expect sql"));
    QCOMPARE(commands[2].args, (QStringList{"SELECT a, b FROM t", "1|x", "2|y"}));

    // A quoted "=" is an argument; the bare one separates the result.
    QCOMPARE(commands[3].verb, QString("call"));
    QCOMPARE(CallSeparatorIndex(commands[3]), 3);
    QCOMPARE(commands[3].args.at(1), QString("="));
    QCOMPARE(commands[3].args.last(), QString("    ="));

    QCOMPARE(commands[4].verb, QString("expect message"));
    QCOMPARE(commands[4].line, 6);
}

void TestScenarioDriver::includes() {
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QDir(dir.path()).mkpath("common");
    auto write = [&](const QString& name, const QByteArray& text) {
        QFile f(dir.filePath(name));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(text);
    };
    write("common/setup.scn",
          "today 01/15/2013\n# nested, relative to this file\ninclude more.scn\n");
    write("common/more.scn", "start\n");
    write("main.scn", "database empty\ninclude common/setup.scn\nexit\n");

    QList<ScenarioCommand> commands;
    QString error;
    QVERIFY2(ParseScenarioFile(dir.filePath("main.scn"), &commands, &error), qPrintable(error));
    QCOMPARE(commands.size(), 4);
    QVERIFY2(commands[2].where().endsWith("common/more.scn:1"), qPrintable(commands[2].where()));

    // An error inside an included file names that file and line (a failure in the main file after
    // an include: previewed_without_preview.scn under scenarios_failing).
    write("common/more.scn", "start\nbogus\n");
    QVERIFY(!ParseScenarioFile(dir.filePath("main.scn"), &commands, &error));
    QVERIFY2(error.contains("common/more.scn:2: expected a command"), qPrintable(error));

    // A missing include and an include cycle are errors at the include line.
    write("main.scn", "database empty\ninclude nothing.scn\n");
    QVERIFY(!ParseScenarioFile(dir.filePath("main.scn"), &commands, &error));
    QVERIFY2(error.contains("main.scn:2: expected a file to include"), qPrintable(error));
    write("main.scn", "include common/loop.scn\n");
    write("common/loop.scn", "include ../main.scn\n");
    QVERIFY(!ParseScenarioFile(dir.filePath("main.scn"), &commands, &error));
    QVERIFY2(error.contains("loop.scn:1: expected no include of a file that includes this one"),
             qPrintable(error));
}

void TestScenarioDriver::textMatching() {
    QVERIFY(TextMatches("Your data", "Your data"));
    QVERIFY(!TextMatches("Your data", "Your data "));
    QVERIFY(!TextMatches("Your data", "Your"));
    QVERIFY(TextMatches("Do you want to restore '...", "Do you want to restore 'x.bkp'?"));
    QVERIFY(!TextMatches("Do you want...", "Did you want"));
    QVERIFY(TextMatches("...", "anything"));
    QVERIFY(TitleMatches("*", "Backup Data"));
    QVERIFY(!TextMatches("*", "Backup Data"));
    QVERIFY(!TitleMatches("Backup", "Backup Data"));
    QCOMPARE(QuoteForReport("a \"b\"\nc\\"), QString(R"("a \"b\"\nc\\")"));
}

// ---------------------------------------------------------------------------------------------
// Amounts in SQL

void TestScenarioDriver::decimalToUnits_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<qint64>("units");

    // Plain and negative amounts: driver_sql.scn.
    AddRow("whole", "12", true, qint64(120000));
    AddRow("plus and blanks", " +7. ", true, qint64(70000));
    AddRow("point first", ".0001", true, qint64(1));
    AddRow("fifth place rounds up", "0.00005", true, qint64(1));
    AddRow("fifth place rounds down", "0.00004999", true, qint64(0));
    AddRow("negative half away from zero", "-1.23455", true, qint64(-12346));
    AddRow("exponent down", "1.5e-3", true, qint64(15));
    AddRow("exponent up", "2E2", true, qint64(2000000));
    AddRow("largest", "922337203685477.5807", true, std::numeric_limits<qint64>::max());
    AddRow("overflow", "922337203685477.5808", false, qint64(0));
    AddRow("rounding overflow", "922337203685477.58075", false, qint64(0));
    AddRow("empty", "", false, qint64(0));
    AddRow("sign only", "-", false, qint64(0));
    AddRow("separators", "1,234.56", false, qint64(0));
    AddRow("two points", "1.2.3", false, qint64(0));
    AddRow("bad exponent", "1e", false, qint64(0));
    AddRow("text", "abc", false, qint64(0));
}

void TestScenarioDriver::decimalToUnits() {
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QFETCH(qint64, units);
    const std::optional<std::int64_t> got = DecimalToUnits(text);
    QCOMPARE(got.has_value(), valid);
    if (valid)
        QCOMPARE(qint64(*got), units);
}

void TestScenarioDriver::unitsToDollars_data() {
    QTest::addColumn<qint64>("units");
    QTest::addColumn<QString>("text");

    // Plain and negative amounts: driver_sql.scn.
    AddRow("zero", qint64(0), "0.00");
    AddRow("no separators", qint64(12345678900), "1234567.89");
    AddRow("under half cent", qint64(49), "0.00");
    AddRow("negative half cent away from zero", qint64(-150), "-0.02");
    AddRow("negative rounding to zero", qint64(-49), "0.00");
    AddRow("lowest", std::numeric_limits<qint64>::min(), "-922337203685477.58");
}

void TestScenarioDriver::unitsToDollars() {
    QFETCH(qint64, units);
    QFETCH(QString, text);
    QCOMPARE(UnitsToDollars(units), text);
}

void TestScenarioDriver::realText_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");

    // Whole numbers, sums and quotients: driver_sql.scn.
    AddRow("fifteen digits", 1.0 / 3.0, "0.333333333333333");
    AddRow("small", 0.000015, "0.000015");
    AddRow("negative small", -0.00002, "-0.00002");
    AddRow("large", 1e20, "100000000000000000000");
    AddRow("large fraction", 1234567890123456.0, "1234567890123460");
    AddRow("zero", 0.0, "0");
    AddRow("negative zero", -0.0, "0");
}

void TestScenarioDriver::realText() {
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(RealText(value), text);
}

void TestScenarioDriver::sqlFunctions() {
    const QString name = "test-scenario-sql";
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", name);
        db.setDatabaseName(":memory:");
        QVERIFY(db.open());
        QString error;
        QVERIFY2(RegisterScenarioSqlFunctions(db, &error), qPrintable(error));
        auto rows = [&](const QString& sql) {
            QStringList out;
            QString why;
            if (!RunScenarioSql(db, sql, &out, &why))
                return QStringList{"error: " + why};
            return out;
        };
        // Plain amounts, rows and Nulls in a table: driver_sql.scn. Exact from the decimal
        // written, whatever the double's binary value; text and Null arguments.
        QCOMPARE(rows("SELECT money(0.29), money('7.125'), money(NULL), dollars(NULL)"),
                 QStringList{"2900|71250|<null>|<null>"});
        QCOMPARE(rows("SELECT dollars(100.4), dollars('150')"), QStringList{"0.01|0.02"});
        QVERIFY(rows("SELECT money('12abc')").first().startsWith("error: "));
        QCOMPARE(rows("SELECT 1.0/3, NULL, 'a b', 1e-7"),
                 QStringList{"0.333333333333333|<null>|a b|0.0000001"});
        QVERIFY(rows("SELECT * FROM nowhere").first().startsWith("error: "));
    }
    QSqlDatabase::removeDatabase(name);

    QSqlDatabase closed = QSqlDatabase::addDatabase("QSQLITE", name);
    QString error;
    QVERIFY(!RegisterScenarioSqlFunctions(closed, &error));
    closed = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

// ---------------------------------------------------------------------------------------------
// Boxes and answers

void TestScenarioDriver::scriptedAnswers() {
    QStringList failures;
    QString now = "s.scn:4";
    ScriptedMessageService::Host host;
    host.where = [&] { return now; };
    host.fail = [&](const QString& at, const QString& expected, const QString& saw) {
        failures << at + ": expected " + expected + " but saw " + saw;
    };
    host.programFolder = [] { return QStringLiteral("/office"); };
    ScriptedMessageService service(host);

    // An OK box takes no answer: the queued Yes waits for the question after it.
    service.queueAnswer({"Yes", std::nullopt, "s.scn:2"});
    QCOMPARE(service.message("Note", "Saved", MsgButtons::Ok, MsgIcon::None), MsgAnswer::Ok);
    QCOMPARE(service.message("Backup Data", "Back up?", MsgButtons::YesNo, MsgIcon::Question),
             MsgAnswer::Yes);
    QVERIFY(failures.isEmpty());

    // Input boxes: the typed text, the default on a bare OK, nothing on Cancel.
    service.queueAnswer({"OK", QString("3"), "s.scn:3"});
    service.queueAnswer({"OK", std::nullopt, "s.scn:3"});
    service.queueAnswer({"Cancel", std::nullopt, "s.scn:3"});
    QCOMPARE(service.input("Copies", "Enter the number:", "1"), std::optional<QString>("3"));
    QCOMPARE(service.input("Copies", "Enter the number:", "1"), std::optional<QString>("1"));
    QCOMPARE(service.input("Copies", "Enter the number:", "1"), std::nullopt);

    // File choosers: relative to the program's folder; the filter is recorded as the text.
    service.queueAnswer({"OK", QString("Backups/old.bkp"), "s.scn:3"});
    QCOMPARE(service.openFileName("Restore From", "/office", "Backups (*.bkp)"),
             std::optional<QString>("/office/Backups/old.bkp"));
    QVERIFY(failures.isEmpty());

    // Every box is recorded in order, with where it appeared.
    QCOMPARE(service.pendingBoxes().size(), 6);
    const std::optional<ScenarioBox> firstBox = service.takeBox();
    QCOMPARE(firstBox->title, QString("Note"));
    QCOMPARE(firstBox->where, QString("s.scn:4"));
    QCOMPARE(service.pendingBoxes().last().text, QString("Backups (*.bkp)"));
    QCOMPARE(service.pendingBoxes().at(1).text, QString("Enter the number:"));

    // An answer of the wrong kind fails where the box appeared (a question with none:
    // unanswered_question.scn); the program is told Cancel.
    now = "s.scn:9";
    service.queueAnswer({"OK", std::nullopt, "s.scn:8"});
    QCOMPARE(service.message("Void", "Sure?", MsgButtons::YesNoCancel, MsgIcon::Question),
             MsgAnswer::Cancel);
    QCOMPARE(failures.size(), 1);
    QVERIFY2(failures[0].startsWith("s.scn:9: expected an answer Yes/No/Cancel") &&
                 failures[0].endsWith("but saw answer OK queued at s.scn:8"),
             qPrintable(failures[0]));

    // While closing down nothing is recorded and nothing fails.
    const qsizetype boxes = service.pendingBoxes().size();
    service.setClosingDown(true);
    QCOMPARE(service.message("Backup Data", "Back up?", MsgButtons::YesNo, MsgIcon::Question),
             MsgAnswer::No);
    QCOMPARE(service.pendingBoxes().size(), boxes);
    QCOMPARE(failures.size(), 1);
}

// ---------------------------------------------------------------------------------------------
// Widget actions, offscreen

void TestScenarioDriver::focusAndLeave() {
    Form form;
    FocusOutCounter firstOuts(form.first);
    FocusOutCounter lastOuts(form.last);
    QString why;

    QVERIFY2(FocusWidget(form.first, &why), qPrintable(why));
    QVERIFY(form.first->hasFocus());
    QCOMPARE(ScreenOf(form.first), form.screen);

    // Leave runs the focus-out and passes the disabled field by.
    QVERIFY2(LeaveWidget(form.first, &why), qPrintable(why));
    QCOMPARE(firstOuts.count, 1);
    QCOMPARE(QApplication::focusWidget(), form.last);

    // Leaving a field that does not have the focus focuses it first, then leaves it.
    QVERIFY2(LeaveWidget(form.first, &why), qPrintable(why));
    QCOMPARE(firstOuts.count, 2);
    QCOMPARE(lastOuts.count, 1);

    // The last widget of the screen wraps round to the first, never into the main window.
    QCOMPARE(NextInTabOrder(form.button), form.first);

    // A disabled or hidden field cannot take the focus.
    QVERIFY(!FocusWidget(form.locked, &why));
    QVERIFY2(why.contains("txtLocked disabled"), qPrintable(why));
    form.last->hide();
    QVERIFY(!FocusWidget(form.last, &why));
    QVERIFY2(why.contains("hidden"), qPrintable(why));
    QCOMPARE(NextInTabOrder(form.first), form.box);
}

void TestScenarioDriver::typeClearAndKeys() {
    Form form;
    QString why;
    QSignalSpy edited(form.first, &QLineEdit::textEdited);
    QSignalSpy returned(form.first, &QLineEdit::returnPressed);

    QVERIFY2(TypeText(form.first, "A1 *ß", &why), qPrintable(why));
    QCOMPARE(form.first->text(), QString("A1 *ß"));
    QCOMPARE(edited.count(), 5); // key by key
    QVERIFY2(TypeText(form.first, "\n", &why), qPrintable(why));
    QCOMPARE(returned.count(), 1);

    // Keys go to the widget that has the focus: a tab moves on, the rest lands in the next field.
    QVERIFY2(TypeText(form.first, "x\ty", &why), qPrintable(why));
    QCOMPARE(form.first->text(), QString("A1 *ßx"));
    QCOMPARE(form.last->text(), QString("y"));

    // Clearing a field: every scenario. A field that cannot be cleared is refused.
    QVERIFY(!ClearField(form.box, &why));
    QVERIFY2(why.contains("not a text field"), qPrintable(why));
    form.last->setReadOnly(true);
    QVERIFY(!ClearField(form.last, &why));
    QVERIFY2(why.contains("read-only"), qPrintable(why));

    QCOMPARE(WidgetText(form.combo), std::optional<QString>("County"));
    QCOMPARE(WidgetText(form.button), std::optional<QString>("E&xit"));
    QCOMPARE(WidgetCaption(form.button), std::optional<QString>("Exit"));
    QCOMPARE(WidgetText(form.screen), std::nullopt);
    QCOMPARE(StripAccessKeys("Save && &Close"), QString("Save & Close"));
}

void TestScenarioDriver::tickChooseClick() {
    Form form;
    QString why;
    QSignalSpy toggled(form.box, &QCheckBox::toggled);

    // Ticking and unticking: driver_screens.scn. A box already so is not clicked.
    QVERIFY2(SetTicked(form.box, true, &why), qPrintable(why));
    QVERIFY2(SetTicked(form.box, true, &why), qPrintable(why));
    QCOMPARE(toggled.count(), 1);

    // A click gives the focus to a button that takes it, so the field's focus-out runs first.
    FocusOutCounter firstOuts(form.first);
    QVERIFY(FocusWidget(form.first, &why));
    QSignalSpy clicked(form.button, &QPushButton::clicked);
    QVERIFY2(ClickWidget(form.button, &why), qPrintable(why));
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(firstOuts.count, 1);
    form.button->setEnabled(false);
    QVERIFY(!ClickWidget(form.button, &why));
    QCOMPARE(clicked.count(), 1);

    QSignalSpy activated(form.combo, &QComboBox::activated);
    QVERIFY2(ChooseEntry(form.combo, "School", &why), qPrintable(why));
    QCOMPARE(form.combo->currentText(), QString("School"));
    QCOMPARE(activated.count(), 1);
    QVERIFY(!ChooseEntry(form.combo, "City", &why));
    QVERIFY2(why.contains("\"County\", \"Township\", \"School\""), qPrintable(why));

    // Option buttons by caption, inside a frame; one cannot be unticked by a click.
    QVERIFY2(ChooseEntry(form.frame, "Bill Number", &why), qPrintable(why));
    QVERIFY(form.optB->isChecked());
    QVERIFY(!form.optA->isChecked());
    QVERIFY(!SetTicked(form.optB, false, &why));
    QVERIFY(!ChooseEntry(form.frame, "Date Order", &why));
    QVERIFY2(why.contains("\"Receipt Number\", \"Bill Number\""), qPrintable(why));
}

// ---------------------------------------------------------------------------------------------
// Grids and lists

void TestScenarioDriver::gridActions() {
    Form form;
    QStandardItemModel model(0, 2);
    model.setHorizontalHeaderLabels({"Bill #", "&Name"});
    for (int r = 0; r < 60; ++r)
        model.appendRow({new QStandardItem(QString::number(r + 1).rightJustified(5)),
                         new QStandardItem(QStringLiteral("OWNER %1").arg(r + 1))});
    auto* grid = new QTableView;
    grid->setObjectName("dtgList");
    grid->setModel(&model);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    form.screen->layout()->addWidget(grid);
    QVERIFY(QTest::qWaitForWindowExposed(&form.window));
    QString why;

    // Not a grid, no current row, a row beyond the last and a column that is not there:
    // grid_*.scn under scenarios_failing.
    QCOMPARE(RowCount(grid, &why), std::optional<int>(60));
    QVERIFY(!CurrentCellText(grid, "Bill #", &why));

    // A row far down is scrolled to and clicked; the cell is read by caption, & ignored.
    QVERIFY2(SelectRow(grid, 55, &why), qPrintable(why));
    QCOMPARE(grid->currentIndex().row(), 54);
    QCOMPARE(CurrentCellText(grid, "Name", &why), std::optional<QString>("OWNER 55"));
    QCOMPARE(CurrentCellText(grid, "Bill #", &why), std::optional<QString>("   55"));

    // A double click reaches the view as one.
    QSignalSpy doubled(grid, &QAbstractItemView::doubleClicked);
    QVERIFY2(DoubleClickWidget(grid, &why), qPrintable(why));
    QCOMPARE(doubled.count(), 1);
    QCOMPARE(doubled.first().first().value<QModelIndex>().row(), 54);
    QCOMPARE(grid->currentIndex().row(), 54);

    // A disabled grid takes no click.
    grid->setEnabled(false);
    QVERIFY(!SelectRow(grid, 1, &why));
    QVERIFY2(why.contains("disabled"), qPrintable(why));
}

// ---------------------------------------------------------------------------------------------
// The whole driver on scenarios that must fail

void TestScenarioDriver::failingScenarios_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("message");

    // Each file says in its first line where and how it must fail:
    // "# fails at N: TEXT" with TEXT the part of the report after "FILE:N: ".
    QDirIterator it(QStringLiteral(LEVYDESK_FAILING_SCENARIOS), {"*.scn"}, QDir::Files);
    QStringList files;
    while (it.hasNext())
        files << it.next();
    files.sort();
    QVERIFY(!files.isEmpty());
    static const QRegularExpression header(R"(^# fails at (\d+): (.*)$)");
    for (const QString& file : files) {
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QString first = QString::fromUtf8(f.readLine()).trimmed();
        const QRegularExpressionMatch m = header.match(first);
        QVERIFY2(m.hasMatch(), qPrintable(file + ": no header"));
        AddRow(qPrintable(QFileInfo(file).baseName()), file, m.captured(1).toInt(), m.captured(2));
    }
}

void TestScenarioDriver::failingScenarios() {
    QFETCH(QString, file);
    QFETCH(int, line);
    QFETCH(QString, message);
    const DriverResult result = runDriver({file});
    QCOMPARE(result.exitCode, 1);
    // The report is the one line naming the file; Qt may have warned about other things.
    QString report;
    for (const QString& l : result.err.split(u'\n'))
        if (report.isEmpty() && l.startsWith(file + u':'))
            report = l;
    const QString prefix = QStringLiteral("%1:%2: ").arg(file).arg(line);
    QVERIFY2(report.startsWith(prefix), qPrintable(result.err + result.out));
    QVERIFY2(TextMatches(message, report.mid(prefix.size())), qPrintable(report));
    QVERIFY2(result.out.contains("FAIL " + file), qPrintable(result.out));
}

void TestScenarioDriver::severalFiles() {
    // Each file runs fresh; one failure makes the whole run fail, the others still run.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    auto write = [&](const QString& name, const QByteArray& text) -> QString {
        QFile f(dir.filePath(name));
        if (!f.open(QIODevice::WriteOnly) || f.write(text) != text.size())
            return QString();
        return dir.filePath(name);
    };
    const QString good = write("good.scn", "write note.txt \"hello there\"\n"
                                           "expect file note.txt \"lo th\"\n"
                                           "expect file no*.txt\n");
    const QString fresh = write("fresh.scn", "# the file of the run before is gone\n"
                                             "expect file note.txt\n");
    DriverResult result = runDriver({good, fresh, good});
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.out.contains("PASS " + good), qPrintable(result.out));
    QVERIFY2(result.err.contains(fresh + ":2: expected a file \"note.txt\" but saw no such file"),
             qPrintable(result.err));
    QVERIFY2(result.out.contains("2 of 3 scenarios passed"), qPrintable(result.out));

    result = runDriver({good});
    QCOMPARE(result.exitCode, 0);
    result = runDriver({});
    QCOMPARE(result.exitCode, 2);
}

QTEST_MAIN(TestScenarioDriver)
#include "test_scenario_driver.moc"
