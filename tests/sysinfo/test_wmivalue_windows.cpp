#include <cstring>
#include <vector>

#include <windows.h>
#include <oleauto.h>

#include <QCoreApplication>

#include "app/sysinfo/wmivalue.h"
#include "tests/support/testenvironment.h"

namespace {

// A value as the system hands it out, freed at the end.
class Value {
public:
    Value() { VariantInit(&m_value); }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { VariantClear(&m_value); }

    void setText(BSTR text)
    {
        m_value.vt = VT_BSTR;
        m_value.bstrVal = text;
    }

    void setNumber(LONG number)
    {
        m_value.vt = VT_I4;
        m_value.lVal = number;
    }

    // As many dimensions as there are bounds; the bytes fill the array.
    void setArray(VARTYPE type, std::vector<SAFEARRAYBOUND> bounds, const QByteArray& bytes)
    {
        m_value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
        m_value.parray = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
        void* elements = nullptr;
        SafeArrayAccessData(m_value.parray, &elements);
        std::memcpy(elements, bytes.constData(), static_cast<std::size_t>(bytes.size()));
        SafeArrayUnaccessData(m_value.parray);
    }

    void setMissingArray()
    {
        m_value.vt = VT_ARRAY | VT_UI1;
        m_value.parray = nullptr;
    }

    [[nodiscard]] const VARIANT& get() const { return m_value; }

private:
    VARIANT m_value;
};

} // namespace

class TestWmiValueWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textIsRead();
    void emptyTextIsAText();
    void textIsOnlyAText();
    void bytesAreRead_data();
    void bytesAreRead();
    void onlyARowOfBytesIsRead();
};

void TestWmiValueWindows::textIsRead()
{
    Value value;
    value.setText(SysAllocString(L"Radeon\u2122"));

    QCOMPARE(WmiValue::text(value.get()).value_or(QString()), QStringLiteral("Radeon\u2122"));
}

void TestWmiValueWindows::emptyTextIsAText()
{
    Value value;
    value.setText(nullptr); // a text of no characters, to COM

    QVERIFY(WmiValue::text(value.get()).has_value());
    QCOMPARE(*WmiValue::text(value.get()), QString());
}

void TestWmiValueWindows::textIsOnlyAText()
{
    Value value;
    QVERIFY(!WmiValue::text(value.get()).has_value());

    value.setNumber(5);

    QVERIFY(!WmiValue::text(value.get()).has_value());
}

void TestWmiValueWindows::bytesAreRead_data()
{
    QTest::addColumn<int>("firstIndex");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("from 0") << 0 << QByteArray("a\0\xFF", 3);
    QTest::newRow("from 5") << 5 << QByteArray("a\0\xFF", 3);
    QTest::newRow("none") << 0 << QByteArray();
}

void TestWmiValueWindows::bytesAreRead()
{
    QFETCH(int, firstIndex);
    QFETCH(QByteArray, expected);
    Value value;
    value.setArray(VT_UI1, { { static_cast<ULONG>(expected.size()), firstIndex } }, expected);

    QCOMPARE(WmiValue::bytes(value.get()), expected);
}

void TestWmiValueWindows::onlyARowOfBytesIsRead()
{
    Value number;
    number.setNumber(5);
    Value missing;
    missing.setMissingArray();
    Value numbers;
    numbers.setArray(VT_I4, { { 2, 0 } }, QByteArray(8, 'x'));
    Value table;
    table.setArray(VT_UI1, { { 2, 0 }, { 3, 0 } }, QByteArray(6, 'x'));

    QCOMPARE(WmiValue::bytes(number.get()), QByteArray());
    QCOMPARE(WmiValue::bytes(missing.get()), QByteArray());
    QCOMPARE(WmiValue::bytes(numbers.get()), QByteArray());
    QCOMPARE(WmiValue::bytes(table.get()), QByteArray());
}

BRISORA_TEST_MAIN(TestWmiValueWindows, QCoreApplication)
#include "test_wmivalue_windows.moc"
