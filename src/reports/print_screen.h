#pragma once
// Print Screen: the picture of a screen, printed on one of the printers of tbl_Printers.

#include <QString>

class QWidget;

// Prints the screen's image, fitted to a landscape letter page, on the printer of that type
// ("Letter" or "TVLetter"). With no such printer, "There is currently no LETTER size printer
// assigned." is shown, titled "Printer Error", and nothing is printed.
void PrintScreenImage(QWidget* screen, const QString& printerType);
