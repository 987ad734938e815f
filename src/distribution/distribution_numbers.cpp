#include "distribution/distribution_numbers.h"

#include "core/tax_database.h"

#include <QLocale>
#include <QSqlQuery>
#include <cmath>

LastDistribution ReadLastDistribution(QSqlDatabase db, const QString& disbType,
                                      const QString& cts) {
    LastDistribution out;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT DisbNum, DisbDate FROM tbl_DisbDates WHERE CTS = ? AND "
                             "DisbType = ? ORDER BY DisbNum DESC LIMIT 1"));
    q.addBindValue(cts);
    q.addBindValue(disbType);
    if (q.exec() && q.next()) {
        out.number = q.value(0).toInt();
        out.date = DateField(q.value(1));
    }
    return out;
}

DistributionRange ReadDistributionRange(QSqlDatabase db, const QString& disbType,
                                        const QString& cts, int number, const QString& taxYear) {
    DistributionRange out;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT DisbDate FROM tbl_DisbDates WHERE CTS = ? AND DisbType = ? "
                             "AND DisbNum <= ? ORDER BY DisbNum DESC LIMIT 2"));
    q.addBindValue(cts);
    q.addBindValue(disbType);
    q.addBindValue(number);
    if (q.exec() && q.next()) {
        out.to = DateField(q.value(0));
        if (q.next())
            out.from = DateField(q.value(0));
    }
    if (!out.from.isValid())
        out.from = QDate(taxYear.toInt(), 3, 1);
    return out;
}

std::optional<int> ParseWholeNumber(const QString& typed) {
    bool ok = false;
    const double value = QLocale::c().toDouble(typed.trimmed(), &ok);
    if (!ok || !std::isfinite(value) || value != std::floor(value) || std::fabs(value) > 1e6)
        return std::nullopt;
    return int(value);
}

QString TwoDigits(int number) {
    return number < 0 ? QString::number(number)
                      : QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}
