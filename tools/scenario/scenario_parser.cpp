#include "scenario_parser.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace {

constexpr int MaxIncludeDepth = 16;

bool isBlank(QChar c) {
    return c == u' ' || c == u'\t' || c == u'\r';
}

struct Shape {
    int min;
    int max; // -1: no limit
};

// Operand counts of the plain commands; the others are checked by hand below.
const QHash<QString, Shape>& shapes() {
    static const QHash<QString, Shape> table = {
        {"include", {1, 1}},
        {"write", {2, 2}},
        {"today", {1, 1}},
        {"start", {0, 0}},
        {"exit", {0, 0}},
        {"menu", {1, 1}},
        {"type", {2, 2}},
        {"clear", {1, 1}},
        {"leave", {1, 1}},
        {"click", {1, 1}},
        {"tick", {1, 1}},
        {"untick", {1, 1}},
        {"choose", {2, 2}},
        {"answer", {1, 2}},
        {"expect message", {2, 2}},
        {"expect text", {2, 2}},
        {"expect checked", {1, 1}},
        {"expect unchecked", {1, 1}},
        {"expect enabled", {1, 1}},
        {"expect disabled", {1, 1}},
        {"expect visible", {1, 1}},
        {"expect hidden", {1, 1}},
        {"expect open", {1, 1}},
        {"expect closed", {1, 1}},
        {"expect title", {2, 2}},
        {"expect sql", {1, -1}},
        {"expect printed", {1, 3}},
        {"expect barcode", {1, 1}},
        {"expect file", {1, 2}},
        {"expect mail", {2, 3}},
        {"expect jobs", {1, 1}},
        {"expect pages", {1, 1}},
        {"expect previewed", {1, 1}},
    };
    return table;
}

// The grid commands: select WIDGET N, doubleclick WIDGET, expect rows WIDGET N, expect cell
// WIDGET "COLUMN" "TEXT".
const QHash<QString, Shape>& gridShapes() {
    static const QHash<QString, Shape> table = {
        {"select", {2, 2}},
        {"doubleclick", {1, 1}},
        {"expect rows", {2, 2}},
        {"expect cell", {3, 3}},
    };
    return table;
}

QString operandCount(int n) {
    return n == 1 ? QStringLiteral("1 operand") : QStringLiteral("%1 operands").arg(n);
}

struct Parser {
    QList<ScenarioCommand>* out;
    QString error;
    QSet<QString> including; // canonical paths on the include stack

    bool fail(const QString& file, int line, const QString& expected, const QString& saw) {
        error =
            QStringLiteral("%1:%2: expected %3 but saw %4").arg(file).arg(line).arg(expected, saw);
        return false;
    }

    bool checkDatabase(const ScenarioCommand& c) {
        const QStringList& a = c.args;
        if (a.isEmpty())
            return fail(c.file, c.line, "database demo, empty, none or file PATH", "nothing");
        const QString kind = a.first();
        if (kind == u"empty" || kind == u"none") {
            if (a.size() != 1)
                return fail(c.file, c.line, QStringLiteral("nothing after database %1").arg(kind),
                            QuoteForReport(a.at(1)));
            return true;
        }
        if (kind == u"file") {
            if (a.size() != 2)
                return fail(c.file, c.line, "database file PATH",
                            operandCount(int(a.size()) - 1) + " after file");
            return true;
        }
        if (kind != u"demo")
            return fail(c.file, c.line, "database demo, empty, none or file PATH",
                        QuoteForReport(kind));
        QSet<QString> seen;
        for (int i = 1; i < a.size(); i += 2) {
            const QString& option = a.at(i);
            if (option != u"parcels" && option != u"persons" && option != u"seed")
                return fail(c.file, c.line, "parcels, persons or seed", QuoteForReport(option));
            if (seen.contains(option))
                return fail(c.file, c.line, QStringLiteral("%1 once").arg(option),
                            QStringLiteral("it twice"));
            seen.insert(option);
            if (i + 1 >= a.size())
                return fail(c.file, c.line, QStringLiteral("a number after %1").arg(option),
                            "the end of the line");
            bool ok = false;
            const qlonglong n = a.at(i + 1).toLongLong(&ok);
            const bool allowZero = option == u"seed";
            if (!ok || n < (allowZero ? 0 : 1) || n > 0xffffffffLL)
                return fail(c.file, c.line,
                            QStringLiteral("a whole number %1 after %2")
                                .arg(allowZero ? "of 0 or more" : "of 1 or more", option),
                            QuoteForReport(a.at(i + 1)));
        }
        return true;
    }

    bool checkCall(const ScenarioCommand& c) {
        const int eq = CallSeparatorIndex(c);
        if (c.args.isEmpty() || eq == 0)
            return fail(c.file, c.line, "call FUNCTION ARG... = \"RESULT\"", "no function name");
        if (eq < 0)
            return fail(c.file, c.line, "\"=\" and the result after the arguments", "no \"=\"");
        if (eq != c.args.size() - 2)
            return fail(c.file, c.line, "one result after \"=\"",
                        operandCount(int(c.args.size()) - eq - 1));
        return true;
    }

    // The print job commands: a count of jobs or pages is a whole number, and expect printed
    // takes either TEXT or job K TEXT.
    bool checkPrintCounts(const ScenarioCommand& c) {
        auto whole = [](const QString& text, int least) {
            bool ok = false;
            const int n = text.toInt(&ok);
            return ok && n >= least && !text.startsWith(u'+');
        };
        if (c.verb == u"expect printed") {
            if (c.args.size() == 1)
                return true;
            if (c.args.size() != 3 || c.quoted.at(0) || c.args.at(0) != u"job")
                return fail(c.file, c.line,
                            "expect printed \"TEXT\" or expect printed job K \"TEXT\"",
                            QStringLiteral("%1 operands").arg(c.args.size()));
            if (!whole(c.args.at(1), 1))
                return fail(c.file, c.line, "a job number 1 or more", QuoteForReport(c.args.at(1)));
            return true;
        }
        if (!whole(c.args.first(), 0))
            return fail(c.file, c.line,
                        c.verb == u"expect jobs" ? "a number of jobs" : "a number of pages",
                        QuoteForReport(c.args.first()));
        return true;
    }

    bool checkGrid(const ScenarioCommand& c, const Shape& shape) {
        const int n = int(c.args.size());
        if (n < shape.min || n > shape.max)
            return fail(c.file, c.line,
                        QStringLiteral("%1 after %2").arg(operandCount(shape.min), c.verb),
                        operandCount(n));
        if (c.verb == u"select" || c.verb == u"expect rows") {
            const bool rowNumber = c.verb == u"select";
            bool ok = false;
            const qlonglong value = c.args.at(1).toLongLong(&ok);
            if (!ok || value < (rowNumber ? 1 : 0) || value > 0x7fffffffLL)
                return fail(c.file, c.line,
                            rowNumber ? QStringLiteral("a row number of 1 or more")
                                      : QStringLiteral("a whole number of rows"),
                            QuoteForReport(c.args.at(1)));
        }
        return true;
    }

    bool check(const ScenarioCommand& c) {
        if (const auto grid = gridShapes().constFind(c.verb); grid != gridShapes().constEnd())
            return checkGrid(c, *grid);
        if (c.verb == u"database")
            return checkDatabase(c);
        if (c.verb == u"call")
            return checkCall(c);
        if (c.verb == u"sql") {
            if (c.args.isEmpty() || c.args.first().trimmed().isEmpty())
                return fail(c.file, c.line, "a statement after sql", "nothing");
            return true;
        }
        const auto it = shapes().constFind(c.verb);
        if (it == shapes().constEnd()) {
            if (c.verb.startsWith(u"expect"))
                return fail(c.file, c.line,
                            "expect message, text, checked, unchecked, enabled, disabled, visible, "
                            "hidden, open, closed, title, sql, printed, barcode, file, jobs, "
                            "pages, previewed, mail, rows or cell",
                            QuoteForReport(c.verb));
            return fail(c.file, c.line, "a command", QuoteForReport(c.verb));
        }
        const int n = int(c.args.size());
        if (n < it->min || (it->max >= 0 && n > it->max)) {
            QString wanted = it->min == it->max ? operandCount(it->min)
                             : it->max < 0
                                 ? QStringLiteral("at least %1").arg(operandCount(it->min))
                                 : QStringLiteral("%1 to %2 operands").arg(it->min).arg(it->max);
            return fail(c.file, c.line, QStringLiteral("%1 after %2").arg(wanted, c.verb),
                        operandCount(n));
        }
        if (c.verb == u"expect printed" || c.verb == u"expect jobs" || c.verb == u"expect pages")
            return checkPrintCounts(c);
        if (c.verb == u"today") {
            if (!QDate::fromString(c.args.first(), QStringLiteral("MM/dd/yyyy")).isValid())
                return fail(c.file, c.line, "a date MM/DD/YYYY", QuoteForReport(c.args.first()));
        } else if (c.verb == u"answer") {
            const QString b = c.args.first().toLower();
            if (b != u"yes" && b != u"no" && b != u"ok" && b != u"cancel")
                return fail(c.file, c.line, "Yes, No, OK or Cancel",
                            QuoteForReport(c.args.first()));
        }
        return true;
    }

    bool parse(const QString& text, const QString& fileName, int depth) {
        const QStringList lines = text.split(u'\n');
        for (int i = 0; i < lines.size(); ++i) {
            const int lineNo = i + 1;
            const QString line = lines.at(i).trimmed();
            if (line.isEmpty() || line.startsWith(u'#'))
                continue;

            int wordEnd = 0;
            while (wordEnd < line.size() && !isBlank(line.at(wordEnd)))
                ++wordEnd;
            const QString word = line.left(wordEnd);
            const QString rest = line.mid(wordEnd).trimmed();

            ScenarioCommand c;
            c.file = fileName;
            c.line = lineNo;
            if (word == u"sql") {
                // The statement stands as written; one that is wholly quoted is unquoted.
                c.verb = word;
                QString statement = rest;
                QStringList tokens;
                QList<bool> quoted;
                QString ignored;
                if (rest.startsWith(u'"') && SplitScenarioLine(rest, &tokens, &quoted, &ignored) &&
                    tokens.size() == 1 && quoted.first())
                    statement = tokens.first();
                c.args << statement;
                c.quoted << false;
            } else {
                QStringList tokens;
                QList<bool> quoted;
                QString why;
                if (!SplitScenarioLine(rest, &tokens, &quoted, &why)) {
                    error = QStringLiteral("%1:%2: %3").arg(fileName).arg(lineNo).arg(why);
                    return false;
                }
                c.verb = word;
                if (word == u"expect") {
                    if (tokens.isEmpty())
                        return fail(fileName, lineNo, "what to expect", "nothing");
                    c.verb += u' ' + tokens.takeFirst();
                    quoted.takeFirst();
                }
                c.args = tokens;
                c.quoted = quoted;
            }
            if (!check(c))
                return false;

            if (c.verb == u"include") {
                if (depth >= MaxIncludeDepth)
                    return fail(
                        fileName, lineNo,
                        QStringLiteral("includes nested at most %1 deep").arg(MaxIncludeDepth),
                        "deeper nesting");
                const QString path =
                    QFileInfo(QFileInfo(fileName).absoluteDir(), c.args.first()).filePath();
                const QString canonical = QFileInfo(path).canonicalFilePath();
                if (canonical.isEmpty())
                    return fail(fileName, lineNo, QStringLiteral("a file to include"),
                                QStringLiteral("no file %1").arg(QuoteForReport(path)));
                if (including.contains(canonical))
                    return fail(fileName, lineNo, "no include of a file that includes this one",
                                QuoteForReport(c.args.first()));
                QFile file(path);
                if (!file.open(QIODevice::ReadOnly))
                    return fail(fileName, lineNo, "a readable file to include",
                                QuoteForReport(file.errorString()));
                including.insert(canonical);
                const bool ok = parse(QString::fromUtf8(file.readAll()), path, depth + 1);
                including.remove(canonical);
                if (!ok)
                    return false;
                continue;
            }
            out->append(c);
        }
        return true;
    }
};

} // namespace

bool SplitScenarioLine(const QString& line, QStringList* tokens, QList<bool>* quoted,
                       QString* error) {
    tokens->clear();
    quoted->clear();
    int i = 0;
    const int n = int(line.size());
    while (true) {
        while (i < n && isBlank(line.at(i)))
            ++i;
        if (i >= n)
            return true;
        QString token;
        if (line.at(i) == u'"') {
            ++i;
            bool closed = false;
            while (i < n) {
                const QChar c = line.at(i);
                if (c == u'\\' && i + 1 < n) {
                    const QChar next = line.at(i + 1);
                    if (next == u'"' || next == u'\\')
                        token += next;
                    else if (next == u'n')
                        token += u'\n';
                    else if (next == u't')
                        token += u'\t';
                    else if (next == u'r')
                        token += u'\r';
                    else
                        token += QStringView(line).mid(i, 2);
                    i += 2;
                    continue;
                }
                if (c == u'"') {
                    closed = true;
                    ++i;
                    break;
                }
                token += c;
                ++i;
            }
            if (!closed) {
                *error = QStringLiteral("expected a closing quote but saw the end of the line");
                return false;
            }
            if (i < n && !isBlank(line.at(i))) {
                *error = QStringLiteral("expected a blank after a closing quote but saw %1")
                             .arg(QuoteForReport(line.mid(i, 10)));
                return false;
            }
            tokens->append(token);
            quoted->append(true);
        } else {
            const int start = i;
            while (i < n && !isBlank(line.at(i)))
                ++i;
            tokens->append(line.mid(start, i - start));
            quoted->append(false);
        }
    }
}

bool ParseScenarioText(const QString& text, const QString& fileName,
                       QList<ScenarioCommand>* commands, QString* error) {
    commands->clear();
    Parser parser{commands, {}, {}};
    const QString canonical = QFileInfo(fileName).canonicalFilePath();
    if (!canonical.isEmpty())
        parser.including.insert(canonical);
    QString body = text;
    if (body.startsWith(QChar(0xfeff)))
        body.remove(0, 1);
    if (!parser.parse(body, fileName, 0)) {
        *error = parser.error;
        commands->clear();
        return false;
    }
    return true;
}

bool ParseScenarioFile(const QString& fileName, QList<ScenarioCommand>* commands, QString* error) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1:0: expected a readable scenario file but saw %2")
                     .arg(fileName, QuoteForReport(file.errorString()));
        return false;
    }
    return ParseScenarioText(QString::fromUtf8(file.readAll()), fileName, commands, error);
}

int CallSeparatorIndex(const ScenarioCommand& command) {
    for (int i = int(command.args.size()) - 1; i >= 0; --i) {
        if (command.args.at(i) == u"=" && !command.quoted.value(i))
            return i;
    }
    return -1;
}

bool TextMatches(const QString& expected, const QString& seen) {
    if (expected.endsWith(QStringLiteral("...")))
        return seen.startsWith(expected.chopped(3));
    return expected == seen;
}

bool TitleMatches(const QString& expected, const QString& seen) {
    return expected == u"*" || TextMatches(expected, seen);
}

QString QuoteForReport(const QString& text) {
    QString out = text;
    out.replace(u'\\', QStringLiteral("\\\\"));
    out.replace(u'"', QStringLiteral("\\\""));
    out.replace(u'\n', QStringLiteral("\\n"));
    out.replace(u'\t', QStringLiteral("\\t"));
    out.remove(u'\r');
    return u'"' + out + u'"';
}
