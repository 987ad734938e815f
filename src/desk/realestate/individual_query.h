#pragma once
// What the individual query screens of both duplicates share: the search by name, bill, control
// (and map, on real estate), the stepping one bill forward or back, the taxpayer's flags, the
// totals of the chosen period and the buttons that hand the bill to a desk screen. Each duplicate
// adds its own amount lines, the taxpayer rows it shows and the screens it hands over to.

#include "core/money.h"
#include "desk/realestate/chain_writes.h"
#include "desk/realestate/query_list.h"

#include <QDate>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <array>
#include <vector>

struct BillPayFlags;

class FieldLeave;
class QGridLayout;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

// The period the screen opens on for a date: discount up to the last day of discount, face up
// to the last day of face, penalty after ('D', 'F', 'P').
QChar IndividualQueryPeriod(const QDate& today, const QDate& discDate, const QDate& faceDate2);

// The bill numbers of a search on the individual screens, real estate and per capita, in the
// order they are stepped through: by name (upper-cased), bill, map or control, at or after the
// criterion.
QStringList FindIndividualBills(QSqlDatabase db, const ChainTables& tables, QuerySearch by,
                                const QString& criterion);
// A bill as the individual screens show it: the master, and the image its amounts come from
// (the last adjustment, or the master). False, after the integrity message, when the adjustment
// the master is marked with is missing; false without a box when the bill is gone.
bool ReadIndividualBill(QSqlDatabase db, const ChainTables& tables, const QString& billNo,
                        QSqlRecord* master, QSqlRecord* source, bool* incomplete);
// One step from position by `by` in a list of count: the new position, or -1 after "You have
// reached the end of the file" / "... beginning of the file".
int StepIndividual(int position, int by, int count);
// The payment information button of an individual screen: "There Has Been No Payment Made On
// This Account." when the three flags are blank, else the text.
void ShowIndividualPaymentInfo(const BillPayFlags& flags, const QString& text);

// The office's rows an individual screen reads its captions and dates from.
struct IndividualQueryOffice {
    QString district;
    QString ward;
    QString btFlag;
    QString schoolName;
    QSqlRecord county;    // Millfile of the county ("000")
    QSqlRecord municipal; // Millfile of the office's district and ward
};

class IndividualQueryScreen : public QWidget {
    Q_OBJECT
public:
    QRadioButton* optName = nullptr;
    QRadioButton* optBill = nullptr;
    QRadioButton* optControl = nullptr;
    QRadioButton* optMap = nullptr; // real estate only
    QGroupBox* fraName = nullptr;
    QGroupBox* fraBill = nullptr;
    QGroupBox* fraControl = nullptr;
    QGroupBox* fraMap = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;

    QRadioButton* optDiscount = nullptr;
    QRadioButton* optFace = nullptr;
    QRadioButton* optPenalty = nullptr;

    QLineEdit* txtPControl = nullptr;
    QLineEdit* txtPName = nullptr;
    QLineEdit* txtPBillNo = nullptr;
    QLineEdit* txtCPayFlag = nullptr;
    QLineEdit* txtTPayFlag = nullptr;
    QLineEdit* txtSPayFlag = nullptr;
    QLineEdit* txtAdjFlag = nullptr;
    QLineEdit* txtCAddrFlag = nullptr;
    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtSTotal = nullptr;
    QLineEdit* txtTotal = nullptr;

    QPushButton* cmdSearch = nullptr;
    QPushButton* cmdForward = nullptr;
    QPushButton* cmdBackward = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExit = nullptr;
    QPushButton* cmdPayment = nullptr;
    QPushButton* cmdAdjust = nullptr;
    QPushButton* cmdAddress = nullptr;
    QPushButton* cmdPrintTaxBill = nullptr;
    QPushButton* cmdPaymentInfo = nullptr;

public Q_SLOTS:
    // Shows the bill on the screen again from the file: a target screen has saved.
    void requery();

protected:
    IndividualQueryScreen(const char* screenName, const ChainTables& tables, bool byMap,
                          QWidget* parent);
    // Builds the screen and reads the office; a duplicate's constructor calls it once.
    void build();

    // A row of the taxpayer frame: a caption and up to three fields side by side.
    void taxpayerRow(const char* caption, QWidget* a, QWidget* b = nullptr, QWidget* c = nullptr);
    QGroupBox* taxpayerFrame() const { return m_fraTaxpayer; }
    // Whether any bill is on the screen.
    bool hasBill() const { return m_position >= 0; }
    QChar period() const;
    const QSqlRecord& master() const { return m_master; }
    const QSqlRecord& source() const { return m_source; }
    const QString& btFlag() const { return m_btFlag; }
    // A field and its caption "lbl..." shown or hidden together.
    void showLine(bool visible, QWidget* field);

    // The duplicate's own taxpayer fields, in rows (taxpayerRow), and its amount lines laid
    // into the amount frame's grid; the totals go where it says.
    virtual void buildTaxpayer() = 0;
    virtual void buildAmounts(QGroupBox* frame, QGridLayout* grid) = 0;
    // Captions and visibility from the office's rows.
    virtual void loadOffice(const IndividualQueryOffice& office) = 0;
    // The duplicate's own fields of the bill on the screen, and its amount lines of the period
    // (adding each into its body's total).
    virtual void showBillFields() = 0;
    virtual void showLines(QChar period, std::array<Money, 3>& totals) = 0;
    virtual void clearBillFields() {}
    virtual QString paymentInfoText() = 0;
    virtual void toPayment() = 0;
    virtual void toAdjust() = 0;
    virtual void toAddress() = 0;
    virtual void printTaxBill() = 0;

private:
    enum class SearchBy { None, Name, Bill, Control, Map };

    void buildCriteria();
    void buildButtons();
    void loadOffice();
    void choose(SearchBy by);
    void search();
    // Shows the bill at that position of the list found; false when the screen closed.
    bool showBill(int position);
    void showAmounts();
    void step(int by);
    void clearScreen();
    void setRowButtons(bool enabled);
    std::vector<QWidget*> criteriaWidgets() const;

    const ChainTables& m_tables;
    const bool m_byMap;
    SearchBy m_by = SearchBy::None;
    QStringList m_found; // bill numbers in the order of the search
    int m_position = -1;
    QSqlRecord m_master;
    QSqlRecord m_source; // the last adjustment, or the master
    QString m_btFlag;
    QGroupBox* m_fraTaxpayer = nullptr;
    QGridLayout* m_taxpayerGrid = nullptr;
    int m_taxpayerRows = 0;
    FieldLeave* m_leave = nullptr;
};
