#pragma once
// frmMessage: the small window without buttons shown while long work runs.

#include <QDialog>
#include <QString>

class QLabel;

class frmMessage : public QDialog {
    Q_OBJECT
public:
    // The texts the screens show.
    static constexpr const char* Searching = "   ***  Searching  ***   ***  Please Wait  ***";
    static constexpr const char* SavingData = "   ***  Saving Data  ***   ***  Please Wait  ***";
    static constexpr const char* RestoringData =
        "  ***  Restoring Data  ***   ***  Please Wait  ***";
    static constexpr const char* BackingUpData = " ***  Backing Up Data  *** ***  Please Wait  ***";
    static constexpr const char* ZippingFile = " ***  Zipping  File  *** ***  Please Wait  ***";
    static constexpr const char* EmailingFile = " ***  Emailing File  *** ***  Please Wait  ***";

    explicit frmMessage(QWidget* parent = nullptr);
    QLabel* lblMessage = nullptr;
};

// Shows frmMessage with the text, centred in the main window, for as long as it lives.
class PleaseWait {
public:
    explicit PleaseWait(const char* text);
    ~PleaseWait();
    PleaseWait(const PleaseWait&) = delete;
    PleaseWait& operator=(const PleaseWait&) = delete;

private:
    frmMessage* m_window = nullptr;
};
