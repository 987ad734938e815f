#include "rates/maintain_millages_county.h"

#include "core/message_window.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "rates/millage_common.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlRecord>
#include <QVBoxLayout>

bool SaveCountyMillages(QSqlDatabase db, const CountyMillages& v, QString* error) {
    QVariantList values = BodyRateValues(v);
    values << v.taxYear;
    return UpdateInOneTransaction(
        db,
        QStringLiteral("UPDATE Millfile SET %1 WHERE District = '00' AND Ward = '0' AND "
                       "TaxYear = ?")
            .arg(QLatin1String(BodyRateAssignments)),
        values, error);
}

frmMaintainMillagesCounty::frmMaintainMillagesCounty(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmMaintainMillagesCounty"));
    setWindowTitle(QStringLiteral("Maintain County Millages"));

    lblCountyName = TitleLabel(this, "lblCountyName");
    QGroupBox* frame = county.build(this, "fraCounty", QStringLiteral("County"), 'C');
    buttons.build(this, false);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblCountyName);
    layout->addWidget(frame);
    layout->addLayout(buttons.row);

    connect(buttons.cmdAccept, &QPushButton::clicked, this, &frmMaintainMillagesCounty::accept);
    connect(buttons.cmdClearScreen, &QPushButton::clicked, this,
            &frmMaintainMillagesCounty::clearScreen);
    connect(buttons.cmdReset, &QPushButton::clicked, this,
            &frmMaintainMillagesCounty::loadFromTable);

    loadFromTable();
    ReloadOnActivation(this, [this] { loadFromTable(); });
}

void frmMaintainMillagesCounty::loadFromTable() {
    PleaseWait wait(frmMessage::Searching);
    QSqlDatabase db = session().DbConnection;
    const QSqlRecord row = ReadCountyMillfileRow(db);
    m_taxYear = TextField(row.value(QStringLiteral("TaxYear"))).left(4);
    county.show(row);
    lblCountyName->setText(ReadCountyName(db));
    county.mr->setFocus();
}

void frmMaintainMillagesCounty::clearScreen() {
    county.clear();
    county.mr->setFocus();
}

void frmMaintainMillagesCounty::accept() {
    if (!CheckNumberFields(county.checks("County")))
        return;
    CountyMillages v;
    v.taxYear = m_taxYear;
    county.store(v);
    SaveMillages(
        [&v](QString* error) { return SaveCountyMillages(session().DbConnection, v, error); },
        "Record Changed");
}
