#pragma once
// The machine-readable marks on bills, notices and receipts: the check digit and Code 128 set C
// text encoders, Code 39 bar codes drawn as bars, the postal bars under a mailing address, and
// upside-down text.

#include <QString>
#include <QVariant>

class ReportSurface;

// The modulus 10 check digit with weights 3, 1, 3, ... from the last digit. `data` is replaced
// by its digits. returnType 0: the Code 128 set C text of the digits and the check digit;
// 1: the digits grouped for reading, with the check digit behind the last group; 2: the check
// digit as a number. Any other returnType gives an invalid QVariant.
QVariant BarCodeMod10Text(QString& data, int returnType);

// Code 128 set C. `data` is trimmed, cut to its digits and made even with a trailing "0", and
// keeps that form. returnType 0: start, the pairs, check character, stop and a blank;
// 1: the digits followed by the check value; 2: the check value alone.
QString BarCode128CText(QString& data, int returnType);

// The receipt and bill marks as the bar code font printed them ("*(40201309150001*") carry
// their payload between the asterisks; the parenthesis is no payload character.
QString Code39Payload(const QString& fontText);

// Code 39 bars of `payload` (start and stop are added; no check character), their top left
// corner at (x, y) in twips. `module` is the narrow bar's width. False, drawing nothing, for a
// payload Code 39 cannot carry.
bool PrintCode39(ReportSurface& surface, double x, double y, const QString& payload,
                 double height = 540, double module = 15);
// The width the bars of `payload` take; 0 when it cannot be carried.
double Code39Width(const QString& payload, double module = 15);

// The postal bars' text: "/" + ZIP (+ ZIP+4 when present) + check digit + "/", the slashes
// being the frame bars.
QString PostalBarsText(const QString& zipCode, const QString& zipCode2);
// Draws those bars (tall and short ones from the digit table, framed by two tall bars) with
// the bottom of the bars' left end at (x, y + 180). Nothing for a ZIP without digits.
void PrintPostalBars(ReportSurface& surface, double x, double y, const QString& zipCode,
                     const QString& zipCode2);

// Text turned through `angle` on the page, anchored at (x, y) in twips. The bills ask for 180
// and get upside-down text whose line runs leftward and upward from (x, y). The turn applied is
// angle times seven, modulo a whole turn, as the bills have always printed it.
void PrintRotatedText(ReportSurface& surface, double fontSize, const QString& fontName,
                      double angle, double x, double y, const QString& text);
