#include "core/query_grid.h"

#include "core/common_values.h"
#include "core/csv.h"
#include "core/messages.h"
#include "core/money.h"
#include "core/session.h"

#include <QAction>
#include <QDate>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QPushButton>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTableView>
#include <sqlite3.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <string>

namespace {

sqlite3* sqliteHandle(const QSqlDatabase& db) {
    if (!db.isOpen() || !db.driver())
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.metaType().name(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
}

bool bindValue(sqlite3_stmt* statement, int index, const QVariant& value) {
    if (value.isNull())
        return sqlite3_bind_null(statement, index) == SQLITE_OK;
    switch (value.metaType().id()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::Bool:
        return sqlite3_bind_int64(statement, index, value.toLongLong()) == SQLITE_OK;
    case QMetaType::Double:
        return sqlite3_bind_double(statement, index, value.toDouble()) == SQLITE_OK;
    default: {
        const QByteArray text = value.toString().toUtf8();
        return sqlite3_bind_text(statement, index, text.constData(), int(text.size()),
                                 SQLITE_TRANSIENT) == SQLITE_OK;
    }
    }
}

const char16_t* const GridMoneyPattern = u"$#,##0.00";

} // namespace

QueryGridModel::QueryGridModel(std::vector<Column> columns, std::vector<Derived> derived,
                               QObject* parent)
    : QAbstractTableModel(parent), m_columns(std::move(columns)), m_derived(std::move(derived)) {
    m_columnField.assign(m_columns.size(), -1);
}

bool QueryGridModel::load(QSqlDatabase db, const QString& sql, const QVariantList& binds,
                          const QList<QByteArray>& orderBy, bool distinct, QString* error) {
    beginResetModel();
    m_loaded = false;
    m_rows = 0;
    m_order.clear();
    QString why;
    sqlite3* handle = sqliteHandle(db);
    if (!handle) {
        why = QStringLiteral("The database is not open.");
    } else {
        // The rows read last stand as long as nothing has been written to the file since: no
        // change through this connection, none committed through another, the same file.
        const SourceStamp stamp = sourceStamp(db, handle);
        const bool same = m_stored && stamp == m_stamp && sql == m_sql && binds == m_binds;
        m_connection = db.connectionName();
        if (!same) {
            m_late.clear();
            m_stored = false;
            m_sorted.clear();
            if (readRows(handle, sql, binds, &why)) {
                m_stored = true;
                m_stamp = stamp;
                m_sql = sql;
                m_binds = binds;
            }
        }
    }
    if (!m_stored) {
        m_storedRows = 0;
        m_arena.clear();
        m_offsets.clear();
        endResetModel();
        if (error)
            *error = why;
        return false;
    }
    std::vector<int> keys;
    for (const QByteArray& name : orderBy)
        keys.push_back(int(m_fieldNames.indexOf(name.toLower())));
    // The same rows in the same order need no sorting again.
    if (m_sorted.empty() || keys != m_sortedKeys || distinct != m_sortedDistinct) {
        sortRows(keys, distinct);
        m_sorted = m_order;
        m_sortedKeys = keys;
        m_sortedDistinct = distinct;
    } else {
        m_order = m_sorted;
        m_rows = int(m_order.size());
    }
    m_loaded = true;
    endResetModel();
    return true;
}

QueryGridModel::SourceStamp QueryGridModel::sourceStamp(const QSqlDatabase& db, sqlite3* handle) {
    SourceStamp stamp;
    stamp.handle = handle;
    stamp.changes = sqlite3_total_changes64(handle);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle, "PRAGMA data_version", -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW)
        stamp.dataVersion = sqlite3_column_int64(statement, 0);
    sqlite3_finalize(statement);
    const QFileInfo file(db.databaseName());
    stamp.fileName = file.absoluteFilePath();
    stamp.modified = file.lastModified().toMSecsSinceEpoch();
    stamp.size = file.size();
    return stamp;
}

bool QueryGridModel::readRows(sqlite3* handle, const QString& sql, const QVariantList& binds,
                              QString* why) {
    m_storedRows = 0;
    m_arena.clear();
    m_offsets.clear();
    m_fieldNames.clear();
    m_fieldCount = 0;
    std::fill(m_columnField.begin(), m_columnField.end(), -1);

    sqlite3_stmt* statement = nullptr;
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(handle, text.constData(), int(text.size()), &statement, nullptr) !=
        SQLITE_OK) {
        *why = QString::fromUtf8(sqlite3_errmsg(handle));
        return false;
    }
    auto failed = [&](const QString& reason) {
        *why = reason;
        sqlite3_finalize(statement);
        m_storedRows = 0;
        m_arena.clear();
        m_offsets.clear();
        return false;
    };
    for (int i = 0; i < binds.size(); ++i)
        if (!bindValue(statement, i + 1, binds.at(i)))
            return failed(QString::fromUtf8(sqlite3_errmsg(handle)));
    const int queryFields = sqlite3_column_count(statement);
    for (int f = 0; f < queryFields; ++f)
        m_fieldNames << QByteArray(sqlite3_column_name(statement, f)).toLower();
    std::vector<std::vector<int>> derivedParts;
    for (const Derived& d : m_derived) {
        std::vector<int> parts;
        for (const QByteArray& part : d.parts)
            parts.push_back(int(m_fieldNames.indexOf(part.toLower())));
        derivedParts.push_back(std::move(parts));
    }
    for (const Derived& d : m_derived)
        m_fieldNames << d.name.toLower();
    m_fieldCount = int(m_fieldNames.size());
    for (std::size_t c = 0; c < m_columns.size(); ++c)
        m_columnField[c] = int(m_fieldNames.indexOf(m_columns[c].field.toLower()));

    std::string joined;
    m_arena.reserve(std::size_t(1) << 20);
    char number[24];
    m_offsets.reserve(std::size_t(1024) * std::size_t(m_fieldCount + 1));
    int rc = SQLITE_ROW;
    while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
        const std::size_t rowStart = m_offsets.size();
        for (int f = 0; f < queryFields; ++f) {
            m_offsets.push_back(quint32(m_arena.size()));
            // Whole numbers (money in ten-thousandths) are written here, which spares the
            // database a conversion and an allocation for each.
            if (sqlite3_column_type(statement, f) == SQLITE_INTEGER) {
                const auto result = std::to_chars(number, number + sizeof number,
                                                  sqlite3_column_int64(statement, f));
                m_arena.append(number, std::size_t(result.ptr - number));
                continue;
            }
            const auto* value = reinterpret_cast<const char*>(sqlite3_column_text(statement, f));
            if (value)
                m_arena.append(value, std::size_t(sqlite3_column_bytes(statement, f)));
        }
        const qsizetype queryEnd = qsizetype(m_arena.size());
        for (std::size_t d = 0; d < m_derived.size(); ++d) {
            joined.clear();
            for (int part : derivedParts[d]) {
                if (part < 0)
                    continue;
                const qsizetype from = qsizetype(m_offsets[rowStart + std::size_t(part)]);
                const qsizetype to = part + 1 < queryFields
                                         ? qsizetype(m_offsets[rowStart + std::size_t(part) + 1])
                                         : queryEnd;
                joined.append(m_arena.data() + from, std::size_t(to - from));
            }
            if (m_derived[d].upper)
                for (char& c : joined)
                    if (c >= 'a' && c <= 'z')
                        c = char(c - 'a' + 'A');
            m_offsets.push_back(quint32(m_arena.size()));
            m_arena.append(joined);
        }
        m_offsets.push_back(quint32(m_arena.size()));
        ++m_storedRows;
        if (m_arena.size() > std::size_t(std::numeric_limits<quint32>::max() / 2))
            return failed(QStringLiteral("The query gives too many rows."));
    }
    if (rc != SQLITE_DONE)
        return failed(QString::fromUtf8(sqlite3_errmsg(handle)));
    sqlite3_finalize(statement);
    return true;
}

void QueryGridModel::sortRows(const std::vector<int>& keys, bool distinct) {
    m_order.resize(std::size_t(m_storedRows));
    for (int r = 0; r < m_storedRows; ++r)
        m_order[std::size_t(r)] = r;
    // Binary order: bytes compared as unsigned, a prefix first.
    auto compare = [](QByteArrayView a, QByteArrayView b) {
        const std::size_t common = std::size_t(std::min(a.size(), b.size()));
        if (const int c = common ? std::memcmp(a.data(), b.data(), common) : 0)
            return c;
        return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
    };
    auto compareRows = [&](int a, int b) {
        for (int f : keys)
            if (f >= 0)
                if (const int c = compare(view(a, f), view(b, f)))
                    return c;
        // Equal keys: the whole row decides, so that equal rows stand together.
        for (int f = 0; f < m_fieldCount; ++f)
            if (const int c = compare(view(a, f), view(b, f)))
                return c;
        return 0;
    };
    // The first sixteen bytes of the first key as two numbers put most rows in order at once.
    std::vector<std::pair<quint64, quint64>> prefix(static_cast<std::size_t>(m_storedRows));
    const int first = keys.empty() ? -1 : keys.front();
    if (first >= 0)
        for (int r = 0; r < m_storedRows; ++r) {
            const QByteArrayView v = view(r, first);
            quint64 high = 0;
            quint64 low = 0;
            for (qsizetype i = 0; i < 8; ++i)
                high = (high << 8) | (i < v.size() ? quint8(v[i]) : 0);
            for (qsizetype i = 8; i < 16; ++i)
                low = (low << 8) | (i < v.size() ? quint8(v[i]) : 0);
            prefix[std::size_t(r)] = {high, low};
        }
    std::sort(m_order.begin(), m_order.end(), [&](int a, int b) {
        const auto& pa = prefix[std::size_t(a)];
        const auto& pb = prefix[std::size_t(b)];
        if (pa != pb)
            return pa < pb;
        return compareRows(a, b) < 0;
    });
    if (distinct && !m_order.empty()) {
        std::size_t kept = 1;
        for (std::size_t i = 1; i < m_order.size(); ++i)
            if (compareRows(m_order[kept - 1], m_order[i]) != 0)
                m_order[kept++] = m_order[i];
        m_order.resize(kept);
    }
    m_rows = int(m_order.size());
}

void QueryGridModel::clear() {
    // The rows read stay for the next load, which takes them when the file has not changed.
    beginResetModel();
    m_rows = 0;
    m_order.clear();
    m_loaded = false;
    endResetModel();
}

int QueryGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rows;
}

int QueryGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_columns.size());
}

QVariant QueryGridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_rows || index.column() >= int(m_columns.size()))
        return {};
    if (role == Qt::DisplayRole)
        return display(index.row(), index.column());
    if (role == Qt::TextAlignmentRole &&
        m_columns[std::size_t(index.column())].format == Format::Money)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant QueryGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal && section >= 0 && section < int(m_columns.size()))
        return m_columns[std::size_t(section)].caption;
    if (orientation == Qt::Vertical)
        return section + 1;
    return {};
}

int QueryGridModel::field(const QByteArray& name) const {
    return int(m_fieldNames.indexOf(name.toLower()));
}

QByteArray QueryGridModel::bytes(int row, int f) const {
    if (row < 0 || row >= m_rows || f < 0 || f >= m_fieldCount)
        return {};
    return view(m_order[std::size_t(row)], f).toByteArray();
}

QString QueryGridModel::text(int row, int f) const {
    if (row < 0 || row >= m_rows || f < 0 || f >= m_fieldCount)
        return {};
    return QString::fromUtf8(view(m_order[std::size_t(row)], f));
}

void QueryGridModel::setLateFields(const QByteArray& keyField, const QString& sql) {
    m_lateKey = keyField;
    m_lateSql = sql;
    m_late.clear();
}

QString QueryGridModel::lateValue(int row, const QByteArray& fieldName) const {
    if (m_lateSql.isEmpty())
        return {};
    const QString key = text(row, field(m_lateKey));
    auto it = m_late.find(key);
    if (it == m_late.end()) {
        QHash<QByteArray, QString> values;
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        if (db.isOpen()) {
            QSqlQuery q(db);
            q.setForwardOnly(true);
            q.prepare(m_lateSql);
            q.addBindValue(key);
            if (q.exec() && q.next()) {
                const QSqlRecord r = q.record();
                for (int i = 0; i < r.count(); ++i)
                    values.insert(r.fieldName(i).toLower().toUtf8(),
                                  q.value(i).isNull() ? QString() : q.value(i).toString());
            }
        }
        it = m_late.insert(key, values);
    }
    return it->value(fieldName.toLower());
}

QString QueryGridModel::display(int row, int column) const {
    const Column& c = m_columns[std::size_t(column)];
    const int f = m_columnField[std::size_t(column)];
    const QString value = f >= 0 ? text(row, f) : lateValue(row, c.field);
    switch (c.format) {
    case Format::Text:
        return value;
    case Format::Money: {
        if (value.isEmpty())
            return value;
        bool ok = false;
        const qint64 units = value.toLongLong(&ok);
        if (ok)
            return Money::fromUnits(units).format(GridMoneyPattern);
        if (const std::optional<Money> amount = Money::parse(value))
            return amount->format(GridMoneyPattern);
        return value;
    }
    case Format::Date: {
        const QDate date = QDate::fromString(value.left(10), Qt::ISODate);
        return date.isValid() ? FormatDate(date) : value;
    }
    }
    return value;
}

int QueryGridModel::findAtOrAfter(int keyField, const QString& criterion) const {
    if (m_rows == 0)
        return -1;
    if (keyField < 0 || keyField >= m_fieldCount)
        return 0;
    const QByteArray wanted = criterion.toUtf8();
    for (int row = 0; row < m_rows; ++row) {
        const QByteArrayView key = view(m_order[std::size_t(row)], keyField);
        // The database's binary order: bytes compared as unsigned, a prefix first.
        const std::size_t common = std::size_t(std::min(key.size(), wanted.size()));
        const int c = common ? std::memcmp(key.data(), wanted.constData(), common) : 0;
        if (c > 0 || (c == 0 && key.size() >= wanted.size()))
            return row;
    }
    return m_rows - 1;
}

QTableView* NamedGrid(QWidget* parent, const QString& name, QueryGridModel* model) {
    auto* grid = new QTableView(parent);
    grid->setObjectName(name);
    grid->setModel(model);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setAlternatingRowColors(true);
    grid->setWordWrap(false);
    grid->verticalHeader()->hide();
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 6);
    grid->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    grid->horizontalHeader()->setHighlightSections(false);
    return grid;
}

void ShowGridRow(QTableView* grid, int row) {
    if (!grid->model() || row < 0 || row >= grid->model()->rowCount())
        return;
    const QModelIndex index = grid->model()->index(row, 0);
    grid->setCurrentIndex(index);
    grid->selectRow(row);
    grid->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void GridContents(const QAbstractItemModel* model, QStringList* captions,
                  std::vector<QStringList>* rows) {
    captions->clear();
    rows->clear();
    if (!model)
        return;
    const int columns = model->columnCount();
    for (int c = 0; c < columns; ++c)
        captions->append(model->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString());
    const int count = model->rowCount();
    rows->reserve(std::size_t(count));
    for (int r = 0; r < count; ++r) {
        QStringList row;
        row.reserve(columns);
        for (int c = 0; c < columns; ++c)
            row.append(model->data(model->index(r, c), Qt::DisplayRole).toString());
        rows->push_back(std::move(row));
    }
}

bool ExportGridToCsv(const QTableView* grid, const QString& title) {
    const std::optional<QString> chosen =
        messageService().saveFileName(QStringLiteral("Export to CSV"), session().programFolder(),
                                      QStringLiteral("CSV Files (*.csv)"));
    if (!chosen || chosen->trimmed().isEmpty())
        return false;
    QString path = *chosen;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".csv");
    QStringList captions;
    std::vector<QStringList> rows;
    GridContents(grid->model(), &captions, &rows);
    QString error;
    if (!WriteCsvFile(path, captions, rows, &error)) {
        MsgBox(QStringLiteral("The file ") + QDir::toNativeSeparators(path) +
                   QStringLiteral(" could not be written: ") + error,
               title, MsgButtons::Ok, MsgIcon::Critical);
        return false;
    }
    return true;
}

QPushButton* AddCsvExport(QTableView* grid, QWidget* buttonParent, const QString& title) {
    auto* button = new QPushButton(QStringLiteral("Export to CS&V..."), buttonParent);
    button->setObjectName(QStringLiteral("cmdExportCsv"));
    button->setAutoDefault(false);
    button->setFocusPolicy(Qt::NoFocus);
    QObject::connect(button, &QPushButton::clicked, grid,
                     [grid, title] { ExportGridToCsv(grid, title); });
    auto* action = new QAction(QStringLiteral("Export to CSV..."), grid);
    action->setObjectName(QStringLiteral("actExportCsv"));
    QObject::connect(action, &QAction::triggered, grid,
                     [grid, title] { ExportGridToCsv(grid, title); });
    grid->addAction(action);
    grid->setContextMenuPolicy(Qt::ActionsContextMenu);
    return button;
}
