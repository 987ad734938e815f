#include "core/session.h"

#include "core/tax_database.h"

#include <QFileInfo>

Session& session() {
    static Session s;
    return s;
}

void Session::reset() {
    SqlText.clear();
    TaxYear.clear();
    ReceiptReportOrder.clear();
    PaymentInfoText.clear();
    RefundRecnum.clear();
    RefundAmount = Money();
    ReceiptCopiesText.clear();
    ReceiptCopies = 0;
    QueryOpenedScreen.clear();
    OsName.clear();
    ShowBackupPrompt = false;
    SilentPrint = false;
    LateBillingRun = false;
    LastScreenName.clear();
}

QString Session::programFolder() const {
    return QFileInfo(DatabasePath).absolutePath();
}

bool OpenSessionDatabase(const QString& path, QString* error) {
    Session& s = session();
    CloseSessionDatabase();
    s.DatabasePath = path;
    QSqlDatabase db = TaxDatabase::open(path, TaxDatabase::SessionConnection, error);
    if (!db.isValid() || !db.isOpen())
        return false;
    s.DbConnection = db;
    s.SharedQuery = QSqlQuery(db);
    return true;
}

void CloseSessionDatabase() {
    Session& s = session();
    s.SharedQuery = QSqlQuery();
    s.DbConnection = QSqlDatabase();
    TaxDatabase::close(TaxDatabase::SessionConnection);
}

QSqlQuery& OpenQuery(const QString& sql) {
    Session& s = session();
    s.SharedQuery = QSqlQuery(s.DbConnection);
    s.SharedQuery.exec(sql);
    return s.SharedQuery;
}
