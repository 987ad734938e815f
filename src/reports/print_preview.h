#pragma once
// frmPrintPreview: a report's pages stacked in one tall scrolling picture, the calling report's
// caption over it, Print (the report's own print path, with all its questions) and Close.

#include "reports/report_surface.h"

#include <QPointer>
#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;
class QScrollBar;

// The stacked pages, drawn at screen size.
class PreviewPicture : public QWidget {
    Q_OBJECT
public:
    explicit PreviewPicture(QWidget* parent = nullptr);
    void setRecording(const Recording& recording);
    void clear();
    const Recording& recording() const { return m_recording; }
    // Twips a screen pixel stands for.
    static constexpr double TwipsPerPixel = 15;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Recording m_recording;
};

class frmPrintPreview : public QWidget {
    Q_OBJECT
public:
    explicit frmPrintPreview(QWidget* parent = nullptr);

    // Shows the pages of a report form: its caption goes into lblCallerCaption, and Print runs
    // `print` while that form is still open.
    void showReport(const Recording& pages, const QString& callerCaption, QWidget* caller,
                    std::function<void()> print);
    const Recording& recording() const { return picPreview->recording(); }

    QWidget* picMain = nullptr;
    PreviewPicture* picPreview = nullptr;
    QScrollBar* VScroll1 = nullptr;
    QScrollBar* HScroll1 = nullptr;
    QLabel* lblCallerCaption = nullptr;
    QPushButton* cmdPrint = nullptr;
    QPushButton* cmdClose = nullptr;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void cmdPrint_Click();
    void cmdClose_Click();
    void updateScrollBars();
    void scrollPicture();

    QPointer<QWidget> m_caller;
    bool m_hasCaller = false;
    std::function<void()> m_print;
};

// Shows the preview window (the open one, or a new one in the main window's client area).
frmPrintPreview* ShowPrintPreview(const Recording& pages, const QString& callerCaption,
                                  QWidget* caller, std::function<void()> print);
