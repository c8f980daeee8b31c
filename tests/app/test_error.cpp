#include "errorcode.h"

#include <QTest>

/** The names and codes of error replies. */
class TestError : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCodeHasItsName_data();
    void everyCodeHasItsName();
    void anyOtherCodeIsUndefined();
    void anyOtherNameIsUndefined();
    void textsComeFromTheMethodsTable();
};

void TestError::everyCodeHasItsName_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QString>("name");

    const QString prefix = QStringLiteral("com.orvendis.Strandel.BoardManager.Error.");
    QTest::newRow("none") << 0 << Error::m_none << prefix + "None";
    QTest::newRow("undefined") << 1 << Error::m_undefined << prefix + "Undefined";
    QTest::newRow("argument") << 2 << Error::m_invalidArgument << prefix + "InvalidArguments";
    QTest::newRow("service") << 3 << Error::m_serviceUnreachable << prefix + "ServiceUnrechable";
    QTest::newRow("process") << 4 << Error::m_process << prefix + "Process";
    QTest::newRow("read") << 5 << Error::m_read << prefix + "Read";
    QTest::newRow("write") << 6 << Error::m_write << prefix + "Write";
    QTest::newRow("configuration") << 7 << Error::m_configuration << prefix + "Configuration";
    QTest::newRow("initialisation") << 8 << Error::m_initialisation << prefix + "Initialisation";
}

void TestError::everyCodeHasItsName()
{
    QFETCH(int, code);
    QFETCH(QString, member);
    QFETCH(QString, name);

    QCOMPARE(member, name);
    QCOMPARE(Error::nameOf(code), name);
    QCOMPARE(Error::codeOf(name), code);
}

void TestError::anyOtherCodeIsUndefined()
{
    for (const int code : {9, -1, 1000, INT_MAX, INT_MIN})
        QCOMPARE(Error::nameOf(code), Error::m_undefined);
}

void TestError::anyOtherNameIsUndefined()
{
    QCOMPARE(Error::codeOf(QString()), 1);
    QCOMPARE(Error::codeOf(QStringLiteral("None")), 1);
    QCOMPARE(Error::codeOf(Error::m_none.toUpper()), 1);
    QCOMPARE(Error::codeOf(Error::m_none + QLatin1Char(' ')), 1);
}

void TestError::textsComeFromTheMethodsTable()
{
    const ErrorText table[] = {{Error::Read, "cannot read"}, {Error::Write, "cannot write"}};

    QCOMPARE(errorText(Error::Write, table, QStringLiteral("other")),
             QStringLiteral("cannot write"));
    QCOMPARE(errorText(Error::Process, table, QStringLiteral("other")), QStringLiteral("other"));
}

QTEST_GUILESS_MAIN(TestError)
#include "test_error.moc"
