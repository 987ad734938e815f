#pragma once
// The lists of the query screens: a table model over the rows of one query, read in one pass
// through SQLite's own interface and held as text, with the captions and formats of the grid's
// columns. The rows are put in order here, by the bytes of their key fields as the database's
// binary collation orders them (sorting tens of thousands of rows in the database costs several
// times more); finding a row works on the same bytes.

#include <QAbstractTableModel>
#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <string>
#include <vector>

class QAbstractItemModel;
class QPushButton;
class QTableView;
class QWidget;
struct sqlite3;

class QueryGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum class Format {
        Text,  // as stored
        Money, // ten-thousandths shown as "$#,##0.00"
        Date,  // ISO text shown as mm/dd/yyyy
    };
    struct Column {
        QString caption;
        QByteArray field; // the query's column name
        Format format = Format::Text;
    };

    // A field made of query fields joined, upper-cased as the database's upper() does (ASCII
    // letters only) when asked: Map3 & Map4 & Map5, UCase(Name). Made here while the rows are
    // read, for a fraction of what the database takes to make them.
    struct Derived {
        QByteArray name;
        QList<QByteArray> parts;
        bool upper = false;
    };

    explicit QueryGridModel(std::vector<Column> columns, std::vector<Derived> derived = {},
                            QObject* parent = nullptr);

    // Runs the query with its bound values and takes all its rows, in the order of the key
    // fields named (then of the whole row). distinct drops a row equal in every field to
    // another, as a union does. On failure the model is empty and *error tells why.
    bool load(QSqlDatabase db, const QString& sql, const QVariantList& binds,
              const QList<QByteArray>& orderBy, bool distinct, QString* error = nullptr);
    // Fields read only for the rows shown: sql takes the value of keyField for its one "?" and
    // gives the fields by name. A column whose field the list itself does not hold is shown
    // from there. Spares the list's query the columns nobody searches on.
    void setLateFields(const QByteArray& keyField, const QString& sql);

    // No rows, as a grid detached from its recordset.
    void clear();
    bool loaded() const { return m_loaded; }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    // The query's column or derived field of that name (case-insensitive), or -1.
    int field(const QByteArray& name) const;
    // A raw value as the database gave it; an empty text for Null.
    QString text(int row, int field) const;
    QByteArray bytes(int row, int field) const;
    // The first row whose key (the fields joined) is at or after the criterion, by the
    // database's binary order; the last row when there is none; -1 for no rows.
    int findAtOrAfter(int keyField, const QString& criterion) const;

private:
    // Where the value of a stored row's field starts in the arena; the next offset is its end.
    qsizetype start(int stored, int field) const {
        return qsizetype(
            m_offsets[std::size_t(stored) * std::size_t(m_fieldCount + 1) + std::size_t(field)]);
    }
    // A field of a stored row without copying.
    QByteArrayView view(int stored, int field) const {
        const qsizetype from = start(stored, field);
        return QByteArrayView(m_arena.data() + from, start(stored, field + 1) - from);
    }
    void sortRows(const std::vector<int>& keys, bool distinct);

    // What the rows read last were read from.
    struct SourceStamp {
        sqlite3* handle = nullptr;
        qint64 changes = -1;     // rows written through the connection since it opened
        qint64 dataVersion = -1; // moves when another connection commits
        QString fileName;
        qint64 modified = 0;
        qint64 size = 0;
        bool operator==(const SourceStamp&) const = default;
    };
    static SourceStamp sourceStamp(const QSqlDatabase& db, sqlite3* handle);
    bool readRows(sqlite3* handle, const QString& sql, const QVariantList& binds, QString* why);
    QString display(int row, int column) const;
    QString lateValue(int row, const QByteArray& field) const;

    std::vector<Column> m_columns;
    std::vector<Derived> m_derived;
    std::vector<int> m_columnField; // the query column of each grid column
    QList<QByteArray> m_fieldNames;
    int m_fieldCount = 0;
    int m_rows = 0;       // rows shown
    int m_storedRows = 0; // rows read
    bool m_stored = false;
    SourceStamp m_stamp;
    QString m_sql;
    QVariantList m_binds;
    std::string m_arena;
    std::vector<quint32> m_offsets;
    QString m_connection;
    QByteArray m_lateKey;
    QString m_lateSql;
    // The late fields of each key read so far, by field name.
    mutable QHash<QString, QHash<QByteArray, QString>> m_late;
    std::vector<int> m_order; // the stored row shown at each position
    // The last order made of the rows read, and what it was made by.
    std::vector<int> m_sorted;
    std::vector<int> m_sortedKeys;
    bool m_sortedDistinct = false;
    bool m_loaded = false;
};

// A grid named as the screen names it, over the model: whole rows selected one at a time,
// read only, no row header.
QTableView* NamedGrid(QWidget* parent, const QString& name, QueryGridModel* model);
// Makes a row current and brings it into view, as a found row is shown.
void ShowGridRow(QTableView* grid, int row);

// What a grid shows, as text: the captions of its columns and each row's texts, in the order
// the grid shows them.
void GridContents(const QAbstractItemModel* model, QStringList* captions,
                  std::vector<QStringList>* rows);
// "Export to CSV...": asks for a file through the message service's save-file chooser (in the
// program's folder), adds ".csv" to a name without a suffix, and writes what the grid shows with
// its captions (core/csv.h). A file that cannot be written is told in a box titled title. True
// when a file was written.
bool ExportGridToCsv(const QTableView* grid, const QString& title);
// Gives a grid its export: the button cmdExportCsv ("Export to CSV...", made on buttonParent,
// for the screen to place) and the same command on the grid's context menu.
QPushButton* AddCsvExport(QTableView* grid, QWidget* buttonParent, const QString& title);
