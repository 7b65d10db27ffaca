#include "Recordset.h"

#include "Gateway.h"
#include "ServerEngine.h"

#include "platform/VbError.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>

namespace {
// The statement with its placeholders replaced by the values in the engine's own notation:
// what the server is sent, and what a recorder of the statements is told.
QString withValues(const QString &statement, const QVariantList &values, const QSqlDatabase &db)
{
    QString text;
    qsizetype next = 0;
    for (const QChar c : statement) {
        if (c != QLatin1Char('?') || next >= values.size()) {
            text.append(c);
            continue;
        }
        const QVariant &value = values[next++];
        QSqlField field(QString(), value.metaType());
        field.setValue(value);
        text.append(db.driver()->formatValue(field));
    }
    return text;
}
}

Recordset::Recordset(QStringList fields, QVector<Row> rows, QString table, QSqlDatabase db)
    : m_data(std::make_shared<Data>(Data{std::move(fields), std::move(rows), std::move(table), db}))
{
    rebuildView();
}

Recordset::Recordset(std::shared_ptr<Data> data) : m_data(std::move(data)) { rebuildView(); }

void Recordset::rebuildView()
{
    m_view.clear();
    m_view.reserve(m_data->rows.size());
    int filterField = -1;
    QVariant filterValue;
    if (!m_filter.isEmpty()) {
        const int eq = m_filter.indexOf(QLatin1Char('='));
        if (eq > 0) {
            filterField = fieldIndex(m_filter.left(eq).trimmed());
            QString v = m_filter.mid(eq + 1).trimmed();
            if (v.size() >= 2 && v.startsWith(QLatin1Char('\'')) && v.endsWith(QLatin1Char('\'')))
                v = v.mid(1, v.size() - 2);
            filterValue = v;
        }
    }
    for (int i = 0; i < m_data->rows.size(); ++i) {
        if (!m_filter.isEmpty()) {
            if (filterField < 0)
                continue;
            const QVariant &value = m_data->rows[i][filterField];
            if (value.isNull() || value.toString().compare(filterValue.toString(), Qt::CaseInsensitive) != 0) {
                bool okA = false, okB = false;
                const double a = value.toDouble(&okA);
                const double b = filterValue.toDouble(&okB);
                if (!(okA && okB && a == b))
                    continue;
            }
        }
        m_view.append(i);
    }
    m_pos = 0;
    m_pending.clear();
}

int Recordset::recordCount() const { return m_view.size(); }
bool Recordset::eof() const { return m_view.isEmpty() || m_pos >= m_view.size(); }
bool Recordset::bof() const { return m_view.isEmpty() || m_pos < 0; }
void Recordset::moveFirst() { m_pos = 0; m_pending.clear(); }
void Recordset::moveLast() { m_pos = m_view.size() - 1; m_pending.clear(); }

void Recordset::moveNext()
{
    if (m_pos < m_view.size())
        ++m_pos;
    m_pending.clear();
}

void Recordset::movePrevious()
{
    if (m_pos >= 0)
        --m_pos;
    m_pending.clear();
}

int Recordset::absolutePosition() const { return m_pos; }

void Recordset::setAbsolutePosition(int position)
{
    m_pos = qBound(-1, position, int(m_view.size()));
    m_pending.clear();
}

int Recordset::currentRow() const
{
    if (m_pos < 0 || m_pos >= m_view.size())
        return -1;
    return m_view[m_pos];
}

Recordset::Bookmark Recordset::bookmark() const { return currentRow(); }

bool Recordset::setBookmark(Bookmark bookmark)
{
    const int pos = m_view.indexOf(bookmark);
    if (pos < 0)
        return false;
    m_pos = pos;
    m_pending.clear();
    return true;
}

Recordset::Bookmark Recordset::bookmarkAt(int position) const
{
    return position >= 0 && position < m_view.size() ? m_view[position] : -1;
}

std::shared_ptr<Recordset> Recordset::clone() const
{
    return std::shared_ptr<Recordset>(new Recordset(m_data));
}

void Recordset::setFilter(const QString &filter)
{
    m_filter = filter.trimmed();
    if (!m_filter.isEmpty() && !filterNamesField()) {
        // Filtering on what the set does not hold is refused, not answered with no rows: a
        // caller that passes the failure over goes on with every row.
        m_filter.clear();
        rebuildView();
        throw VbError(3001, QStringLiteral("参数类型不正确，或不在可以接受的范围之内，或与其他参数冲突。"));
    }
    rebuildView();
}

bool Recordset::filterNamesField() const
{
    const int eq = m_filter.indexOf(QLatin1Char('='));
    return eq > 0 && fieldIndex(m_filter.left(eq).trimmed()) >= 0;
}

QString Recordset::filter() const { return m_filter; }

const QStringList &Recordset::fieldNames() const { return m_data->fields; }

int Recordset::fieldIndex(const QString &name) const
{
    for (int i = 0; i < m_data->fields.size(); ++i)
        if (m_data->fields[i].compare(name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

bool Recordset::hasField(const QString &name) const { return fieldIndex(name) >= 0; }

QVariant Recordset::field(int index) const
{
    const int row = currentRow();
    if (row < 0 || index < 0 || index >= m_data->fields.size())
        return QVariant();
    if (m_pending.contains(index))
        return m_pending.value(index);
    return m_data->rows[row][index];
}

QVariant Recordset::field(const QString &name) const { return field(fieldIndex(name)); }

QString Recordset::text(const QString &name) const
{
    const QVariant v = field(name);
    return v.isNull() ? QString() : v.toString();
}

QVariant Recordset::valueAt(int position, int index) const
{
    if (position < 0 || position >= m_view.size() || index < 0 || index >= m_data->fields.size())
        return QVariant();
    return m_data->rows[m_view[position]][index];
}

void Recordset::setField(const QString &name, const QVariant &value)
{
    const int index = fieldIndex(name);
    if (index >= 0 && currentRow() >= 0)
        m_pending.insert(index, value);
}

bool Recordset::update()
{
    const int row = currentRow();
    if (row < 0 || m_pending.isEmpty())
        return true;
    if (m_data->table.isEmpty()) {
        m_lastError = QStringLiteral("无法更新：数据来自多个表");
        return false;
    }
    QStringList sets;
    QVariantList values;
    for (auto it = m_pending.cbegin(); it != m_pending.cend(); ++it) {
        sets << m_data->fields[it.key()] + QStringLiteral("=?");
        values << it.value();
    }
    QStringList where;
    const Row &original = m_data->rows[row];
    const int id = fieldIndex(QStringLiteral("ID"));
    if (id >= 0) {
        where << QStringLiteral("ID=?");
        values << original[id];
    } else {
        for (int i = 0; i < m_data->fields.size(); ++i) {
            if (original[i].isNull()) {
                where << m_data->fields[i] + QStringLiteral(" IS NULL");
            } else {
                where << m_data->fields[i] + QStringLiteral("=?");
                values << original[i];
            }
        }
    }
    QSqlQuery q(m_data->db);
    const QString statement = QStringLiteral("UPDATE %1 SET %2 WHERE %3")
                                  .arg(m_data->table, sets.join(QLatin1Char(',')), where.join(QStringLiteral(" AND ")));
    const Gateway::StatementObserver observer = Gateway::statementObserver();
    bool ok;
    if (ServerEngine::isServer(m_data->db)) {
        // The server's driver would prepare the statement, run it with the values written in
        // and drop it again, three round trips for one row; it goes in one, as it would have run.
        const QString sent = withValues(statement, values, m_data->db);
        if (observer)
            observer(sent);
        ok = q.exec(sent);
    } else {
        if (observer)
            observer(withValues(statement, values, m_data->db));
        q.prepare(statement);
        for (const QVariant &v : values)
            q.addBindValue(v);
        ok = q.exec();
    }
    if (!ok) {
        m_lastError = q.lastError().text();
        return false;
    }
    for (auto it = m_pending.cbegin(); it != m_pending.cend(); ++it)
        m_data->rows[row][it.key()] = it.value();
    m_pending.clear();
    return true;
}

QString Recordset::lastError() const { return m_lastError; }
