#pragma once
// A per capita name is kept in parts; the name the lists sort by, the name printed on the bill
// and the street line are built from them.

#include <QString>

struct PersonNameParts {
    QString prefix;
    QString fName;
    QString mName;
    QString lName;
    QString suffix;
};

// "LAST SUFFIX, PREFIX FIRST MIDDLE": the last name, then a blank and the suffix when there is
// one; then a comma when there is a last name and any of prefix, first and middle name; then
// each of those present after a blank. Parts count as present when they hold more than blanks.
QString BuildPersonName(const PersonNameParts& parts);
// "PREFIX FIRST MIDDLE LAST SUFFIX": the parts present, joined by one blank.
QString BuildPrintName(const PersonNameParts& parts);
// The trimmed street number, one blank, the trimmed street name.
QString BuildStreetLine(const QString& streetNumber, const QString& streetName);
