#pragma once
// What the distribution screens build alike: the map number's three fields (hidden for per
// capita, which has none), the fields that show a row's columns while a run walks, and the
// print and preview paths of a report form.

#include "reports/report_frame.h"

#include <QPointer>
#include <QSqlDatabase>
#include <QString>
#include <initializer_list>
#include <utility>

class QHBoxLayout;
class QLineEdit;
class QPushButton;
class QSqlRecord;
class QWidget;

// The session's tax year, or the county row's when the session has none yet.
QString SessionTaxYear(QSqlDatabase db);

// Makes txtMap3, txtMap4 and txtMap5 side by side; shown only when the duplicate has a map.
QHBoxLayout* MapFields(QWidget* parent, bool shown, QLineEdit** map3, QLineEdit** map4,
                       QLineEdit** map5);

// A report form's cmdPrint, cmdPrintPreview and cmdExit (which takes no focus), in a row.
QHBoxLayout* ReportButtons(QWidget* parent, QPushButton** print, QPushButton** preview,
                           QPushButton** exit);

// Each field shows its column of the row as text.
void ShowColumns(const QSqlRecord& row,
                 std::initializer_list<std::pair<QLineEdit*, const char*>> fields);

// Runs the report: the print path, or the preview, whose Print button runs the form's own
// cmdPrint_Click with all its questions. True when the print path ran to the end.
template <typename Form>
bool PrintOrPreview(const ReportDefinition& report, Form* form, bool print, QSqlDatabase db) {
    if (print)
        return PrintReport(report, db);
    QPointer<Form> self(form);
    PreviewReport(
        report, form,
        [self] {
            if (self)
                self->cmdPrint_Click();
        },
        db);
    return false;
}
