#pragma once
// frmImportDuplicate: the county's delivery, as CSV files in a folder, made into a new tax
// database, with every refused value listed; the new database can be opened at once.

#include <QDialog>

class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;

class frmImportDuplicate : public QDialog {
    Q_OBJECT
public:
    explicit frmImportDuplicate(QWidget* parent = nullptr);

    QLineEdit* txtFolder = nullptr;
    QPushButton* cmdFolder = nullptr;
    QLineEdit* txtDatabase = nullptr;
    QPushButton* cmdDatabase = nullptr;
    QProgressBar* prgImport = nullptr;
    QListWidget* lstFindings = nullptr;
    QPushButton* cmdImport = nullptr;
    QPushButton* cmdExit = nullptr;

private:
    void import();
    void openImported(const QString& path);
};
