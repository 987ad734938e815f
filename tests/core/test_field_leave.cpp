// The field-leave filter: what counts as leaving a field. A screen in a client-area window
// (as every screen is) with a field, a second field and a button that takes no focus.

#include "core/field_leave.h"

#include <QApplication>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <memory>

namespace {

struct Screen {
    QMdiArea area;
    QPointer<QWidget> screen;
    QLineEdit* field = nullptr;
    QLineEdit* next = nullptr;
    QPushButton* noFocus = nullptr;
    int leaves = 0;

    Screen() {
        screen = new QWidget;
        field = new QLineEdit(screen);
        next = new QLineEdit(screen);
        noFocus = new QPushButton(QStringLiteral("Clear"), screen);
        noFocus->setFocusPolicy(Qt::NoFocus);
        auto* layout = new QVBoxLayout(screen);
        layout->addWidget(field);
        layout->addWidget(next);
        layout->addWidget(noFocus);
        auto* leave = new FieldLeave(screen);
        // The action reads the screen, as the screens' actions do.
        leave->onLeave(field, [this] {
            ++leaves;
            next->text();
        });
        area.addSubWindow(screen)->show();
        area.resize(400, 300);
        area.show();
        QApplication::setActiveWindow(&area);
        field->setFocus();
    }
};

} // namespace

class TestFieldLeave : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void movingOnIsALeave();
    void buttonWithoutFocusIsNoLeave();
    void destroyingTheScreenIsNoLeave();
};

void TestFieldLeave::movingOnIsALeave() {
    Screen s;
    QVERIFY(QTest::qWaitForWindowActive(&s.area));
    QTRY_VERIFY(s.field->hasFocus());
    s.next->setFocus(Qt::TabFocusReason);
    QCOMPARE(s.leaves, 1);
    QVERIFY(s.next->hasFocus());
}

void TestFieldLeave::buttonWithoutFocusIsNoLeave() {
    Screen s;
    QVERIFY(QTest::qWaitForWindowActive(&s.area));
    QTRY_VERIFY(s.field->hasFocus());
    // The press hands the focus to the client-area window, which gives it back.
    QTest::mouseClick(s.noFocus, Qt::LeftButton);
    QCOMPARE(s.leaves, 0);
    QVERIFY(s.field->hasFocus());
}

void TestFieldLeave::destroyingTheScreenIsNoLeave() {
    Screen s;
    QVERIFY(QTest::qWaitForWindowActive(&s.area));
    QTRY_VERIFY(s.field->hasFocus());
    // The field goes first, still with the focus, while its screen is being destroyed: its
    // action would run on what is left of the screen.
    delete s.screen.data();
    QVERIFY(s.screen.isNull());
    QCOMPARE(s.leaves, 0);
}

QTEST_MAIN(TestFieldLeave)
#include "test_field_leave.moc"
