#pragma once
// The values that live for the whole run: the one database connection and the few flags and
// texts the screens hand each other.

#include "core/money.h"

#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

struct Session {
    // Where the open tax database lives; "the program's folder" is its folder.
    QString DatabasePath;
    QSqlDatabase DbConnection;
    QSqlQuery SharedQuery;
    QString SqlText;
    QString TaxYear;
    QString ReceiptReportOrder;
    QString PaymentInfoText;
    QString RefundRecnum;
    Money RefundAmount;
    QString ReceiptCopiesText;
    int ReceiptCopies = 0;
    // Names of the desk screens that a query screen has opened and not yet seen closed.
    QSet<QString> QueryOpenedScreen;
    QString OsName;
    bool ShowBackupPrompt = false;
    bool SilentPrint = false;
    bool LateBillingRun = false;
    QString LastScreenName;

    // Flags false, texts empty, numbers zero; the connection and its path are kept.
    void reset();
    // The folder of the database, where distributions, backups and printouts go.
    QString programFolder() const;
};

Session& session();

// Opens the session's connection on the tax database file. False, with the reason, when the
// file is missing or is not a database that can be opened.
bool OpenSessionDatabase(const QString& path, QString* error = nullptr);
// Closes it, ignoring errors. The path is kept, so the same file can be reopened.
void CloseSessionDatabase();

// Runs SQL on the shared recordset of the session and returns it (positioned before the first
// row). A failed statement leaves the query inactive; lastError() tells why.
QSqlQuery& OpenQuery(const QString& sql);
