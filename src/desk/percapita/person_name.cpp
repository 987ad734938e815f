#include "desk/percapita/person_name.h"

#include <QStringList>

namespace {

bool present(const QString& part) {
    return !part.trimmed().isEmpty();
}

} // namespace

QString BuildPersonName(const PersonNameParts& p) {
    QString name;
    if (present(p.lName))
        name = p.lName.trimmed();
    if (present(p.suffix))
        name += QLatin1Char(' ') + p.suffix.trimmed();
    if (present(p.lName) && (present(p.prefix) || present(p.fName) || present(p.mName)))
        name += QLatin1Char(',');
    for (const QString* part : {&p.prefix, &p.fName, &p.mName})
        if (present(*part))
            name += QLatin1Char(' ') + part->trimmed();
    return name.trimmed();
}

QString BuildPrintName(const PersonNameParts& p) {
    QStringList parts;
    for (const QString* part : {&p.prefix, &p.fName, &p.mName, &p.lName, &p.suffix})
        if (present(*part))
            parts << part->trimmed();
    return parts.join(QLatin1Char(' '));
}

QString BuildStreetLine(const QString& streetNumber, const QString& streetName) {
    return streetNumber.trimmed() + QLatin1Char(' ') + streetName.trimmed();
}
