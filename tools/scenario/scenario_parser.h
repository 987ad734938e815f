#pragma once
// Reading scenario files: one command a line, quoted and bare operands, includes. The parser
// checks the form of every command before anything runs, so a misspelt command fails at once
// with its file and line instead of half way through a run.

#include <QList>
#include <QString>
#include <QStringList>

struct ScenarioCommand {
    QString file; // as named on the command line, or resolved for an include
    int line = 0;
    // The command word, with the kind for expect: "type", "expect text", "expect sql", ...
    QString verb;
    // Operands after the verb, quotes and escapes removed. For sql: the one statement.
    QStringList args;
    // Whether each operand was written in quotes (a quoted "=" is no separator in call).
    QList<bool> quoted;

    QString where() const { return QStringLiteral("%1:%2").arg(file).arg(line); }
};

// Splits a line into operands. A quoted operand takes \" for a quote, \\ for a backslash, \r
// for a carriage return, \n for a line break and \t for a tab; any other backslash stays as
// written. False, with the
// reason, for an unclosed quote or a quote glued to other text.
bool SplitScenarioLine(const QString& line, QStringList* tokens, QList<bool>* quoted,
                       QString* error);

// Parses one scenario text. Includes are read relative to the folder of fileName.
// The error reads "FILE:LINE: expected ... but saw ...".
bool ParseScenarioText(const QString& text, const QString& fileName,
                       QList<ScenarioCommand>* commands, QString* error);
bool ParseScenarioFile(const QString& fileName, QList<ScenarioCommand>* commands, QString* error);

// The position of the "=" that separates a call's arguments from its result, or -1.
int CallSeparatorIndex(const ScenarioCommand& command);

// Text comparison of the scenario language: an expected text ending in "..." matches any text
// that begins with what stands before it; otherwise the texts must be equal.
bool TextMatches(const QString& expected, const QString& seen);
// A title "*" matches any title; otherwise as TextMatches.
bool TitleMatches(const QString& expected, const QString& seen);

// A text for a failure line: quoted, with line breaks and quotes escaped as they are written.
QString QuoteForReport(const QString& text);
