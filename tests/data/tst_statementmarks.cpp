#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QtTest>

// A value read from a control and joined into statement text must go through Sql::text,
// Sql::number or Sql::date (or become a number first), or the gateway cannot refuse a quote,
// a formula or a false date in it. This scan makes a forgotten mark fail the tests.
// Deliberately simple: C++ statements are cut at ; { } outside string literals, a statement
// is statement text when one of its literals holds an SQL word, and each control read in it
// must sit inside a marking call. A value first kept in a variable is not followed.
namespace {

// The filter rows mark their dates with Sql::date inside ConditionRow::typedDate.
const QStringList SafeCalls = {"Sql::text", "Sql::number", "Sql::date", "Val", "CInt", "CLng", "CCur", "CDbl",
                               "ConditionRow::typedDate"};

struct Statement {
    QString code;       // the statement with string literals kept
    QString literals;   // the statement's literals only
    int line = 0;       // where it starts
};

QList<Statement> statements(const QString &source)
{
    QList<Statement> out{Statement{{}, {}, 1}};
    int line = 1;
    QChar quote; // of the literal being read; null outside one
    for (qsizetype i = 0; i < source.size(); ++i) {
        const QChar c = source.at(i);
        Statement &cur = out.last();
        if (c == u'\n')
            ++line;
        if (quote.isNull() && c == u'/' && i + 1 < source.size() && source.at(i + 1) == u'/') {
            while (i < source.size() && source.at(i) != u'\n')
                ++i;
            ++line;
            cur.code += u'\n';
        } else if (!quote.isNull()) {
            cur.code += c;
            if (quote == u'"')
                cur.literals += c;
            if (c == u'\\' && i + 1 < source.size()) {
                cur.code += source.at(++i);
            } else if (c == quote) {
                quote = QChar();
                cur.literals += u' ';
            }
        } else if (c == u';' || c == u'{' || c == u'}') {
            out.append(Statement{{}, {}, line});
        } else {
            if (c == u'"' || c == u'\'')
                quote = c;
            if (cur.code.trimmed().isEmpty())
                cur.line = line;
            cur.code += c;
        }
    }
    return out;
}

// True when the read at pos stands inside a call of one of SafeCalls.
bool marked(const QString &code, qsizetype pos)
{
    static const QRegularExpression callName(QStringLiteral(R"(([A-Za-z_][A-Za-z0-9_:]*)\s*$)"));
    int depth = 0;
    for (qsizetype i = pos - 1; i >= 0; --i) {
        const QChar c = code.at(i);
        if (c == u')') {
            ++depth;
        } else if (c == u'(') {
            if (depth > 0) {
                --depth;
                continue;
            }
            const auto m = callName.match(code.left(i));
            if (m.hasMatch() && SafeCalls.contains(m.captured(1)))
                return true;
        }
    }
    return false;
}

// "file:line: the read" for each unmarked control read joined into statement text.
QStringList findings(const QString &file, const QString &source)
{
    static const QRegularExpression sqlWord(
        QStringLiteral(R"(\b(select|insert|update|delete|where|values|set|and|or|like)\b)"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression read(
        QStringLiteral(R"([A-Za-z_][A-Za-z0-9_]*(->|\.)(text|currentText|toPlainText)\(\))"));
    QStringList found;
    for (const Statement &s : statements(source)) {
        if (!s.code.contains(u'+') || !sqlWord.match(s.literals).hasMatch())
            continue;
        for (auto it = read.globalMatch(s.code); it.hasNext();) {
            const auto m = it.next();
            if (marked(s.code, m.capturedStart()))
                continue;
            const int line = s.line + int(s.code.left(m.capturedStart()).count(u'\n'));
            found << file + u':' + QString::number(line) + QStringLiteral(": ") + m.captured();
        }
    }
    return found;
}
}

class TestStatementMarks : public QObject {
    Q_OBJECT
private slots:
    void planted_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<int>("unmarked");
        QTest::newRow("unmarked text") << R"(sql = "select * from Customer where Address='" + txtAddress->text() + "'";)" << 1;
        QTest::newRow("unmarked date over two lines")
            << "QString s = \" AND Sale.CreateDate>=#\"\n    + txtCreateDate->text() + \"#\";" << 1;
        QTest::newRow("unmarked remark") << R"(ExecuteSql("update Sale set Detail='" + txtDetail.toPlainText() + "'");)" << 1;
        QTest::newRow("read outside the mark")
            << R"(s = "where A='" + Sql::text(a) + "' and B=" + txtB->text();)" << 1;
        QTest::newRow("marked") << R"(sql = "select * from Customer where Address='" + Sql::text(Trim(txtAddress->text())) + "'";)" << 0;
        QTest::newRow("not a statement") << R"(Msg::info("共找到 " + txtCount->text(), "提示");)" << 0;
        QTest::newRow("statement ends first") << "s = \"select * from Sale\";\nlabel = txtA->text() + \"x\";" << 0;
    }
    void planted()
    {
        QFETCH(QString, source);
        QTEST(int(findings(QStringLiteral("planted.cpp"), source).size()), "unmarked");
    }

    void sourceTree()
    {
        QStringList found;
        int files = 0;
        QDirIterator it(QStringLiteral(TARVIK_SOURCE_DIR), {QStringLiteral("*.cpp"), QStringLiteral("*.h")},
                        QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            QFile f(it.next());
            QVERIFY(f.open(QIODevice::ReadOnly));
            ++files;
            found += findings(QDir(QStringLiteral(TARVIK_SOURCE_DIR)).relativeFilePath(f.fileName()),
                              QString::fromUtf8(f.readAll()));
        }
        QVERIFY2(files > 50, "the scan found the program's sources");
        QVERIFY2(found.isEmpty(), qPrintable(found.join(u'\n')));
    }
};

QTEST_MAIN(TestStatementMarks)
#include "tst_statementmarks.moc"
