#include <algorithm>

#include <QCoreApplication>
#include <QTemporaryFile>

#include "macsim/model/machinedescription.h"
#include "macsim/model/smcvalue.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

MachineDescription described(const QString& name)
{
    QString error;
    const auto machine = MachineDescription::load(name, error);
    if (!machine) {
        qFatal("%s", qPrintable(error));
    }
    return *machine;
}

const KeyEntry* find(const MachineDescription& machine, const QByteArray& name)
{
    const auto found = std::find_if(machine.keys.begin(), machine.keys.end(),
                                    [&name](const KeyEntry& entry) { return entry.name == name; });
    return found == machine.keys.end() ? nullptr : &*found;
}

const QStringList foreignMachines { QStringLiteral("Generic-PC"), QStringLiteral("VMware7,1") };

} // namespace

class MachinesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMachinesAreThere()
    {
        const QStringList names = MachineDescription::names();
        for (const char* name :
             { "MacBookPro11,3", "Macmini6,2", "iMac14,2", "MacPro5,1", "MacBook10,1", "Xserve3,1",
               "MacBookPro8,1", "VMware7,1", "Generic-PC" }) {
            QVERIFY2(names.contains(QLatin1String(name)), name);
        }
    }

    void everyMachineIsValid_data() { addRows(false); }
    void everyMachineIsValid()
    {
        QFETCH(QString, name);
        const MachineDescription machine = described(name);
        QCOMPARE(machine.problems(), QStringList());
        QCOMPARE(machine.name, name);
        QCOMPARE(machine.dmi.value(QStringLiteral("product_name")), name);
        const bool isMac
            = machine.dmi.value(QStringLiteral("sys_vendor")).contains(QLatin1String("Apple"));
        QCOMPARE(isMac, !foreignMachines.contains(name));
        QCOMPARE(machine.hasController(), isMac);
    }

    void everyControllerHasATableOfRealSize_data() { addRows(true); }
    void everyControllerHasATableOfRealSize()
    {
        QFETCH(QString, name);
        const MachineDescription machine = described(name);
        QVERIFY(machine.keys.size() >= 250);
        QCOMPARE(smcvalue::decode("ui32", find(machine, "#KEY")->value).value(),
                 static_cast<double>(machine.keys.size()));
        QVERIFY(std::is_sorted(
            machine.keys.begin(), machine.keys.end(),
            [](const KeyEntry& left, const KeyEntry& right) { return left.name < right.name; }));
        QVERIFY(machine.keys.front().name < QByteArray("T"));
        QVERIFY(!(machine.keys.back().name < QByteArray("U")));
    }

    void everyTableHasOddValues_data() { addRows(true); }
    void everyTableHasOddValues()
    {
        QFETCH(QString, name);
        const MachineDescription machine = described(name);
        bool absent = false;
        bool atOrBelowZero = false;
        bool unreadable = false;
        bool readOnly = false;
        for (const KeyEntry& entry : machine.keys) {
            unreadable = unreadable || !entry.isReadable();
            readOnly = readOnly || !entry.isWritable();
            if (entry.name.startsWith('T') && entry.type == "sp78") {
                const double celsius = smcvalue::decode("sp78", entry.value).value();
                absent = absent || celsius == -127.0;
                atOrBelowZero = atOrBelowZero || (celsius <= 0.0 && celsius > -127.0);
            }
        }
        QVERIFY(absent);
        QVERIFY(atOrBelowZero);
        QVERIFY(unreadable);
        QVERIFY(readOnly);
    }

    void someMachinesHaveKeysThatDifferInCaseOnly()
    {
        const MachineDescription machine = described(QStringLiteral("Macmini6,2"));
        QVERIFY(find(machine, "TC0P") != nullptr);
        QVERIFY(find(machine, "TC0p") != nullptr);
    }

    void fansHaveTheirKeys_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("fans");
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<bool>("mask");
        const auto row = [](const char* name, int fans, const char* type, bool mask) {
            QTest::newRow(name) << QString::fromLatin1(name) << fans << QByteArray(type) << mask;
        };
        row("MacBookPro11,3", 2, "fpe2", true);
        row("MacBookPro8,1", 1, "fpe2", true);
        row("MacBookPro16,1", 2, "flt ", false);
        row("Macmini6,2", 1, "fpe2", true);
        row("Macmini8,1", 1, "flt ", false);
        row("iMac12,2", 3, "fpe2", true);
        row("iMac14,2", 1, "fpe2", true);
        row("iMacPro1,1", 2, "flt ", false);
        row("MacPro5,1", 6, "fpe2", true);
        row("MacPro7,1", 4, "flt ", false);
        row("Xserve3,1", 8, "fpe2", true);
    }
    void fansHaveTheirKeys()
    {
        QFETCH(QString, name);
        QFETCH(int, fans);
        QFETCH(QByteArray, type);
        QFETCH(bool, mask);
        const MachineDescription machine = described(name);
        QCOMPARE(find(machine, "FNum")->value, QByteArray(1, static_cast<char>(fans)));
        QCOMPARE(find(machine, "FS! ") != nullptr, mask);
        for (int fan = 0; fan < fans; ++fan) {
            for (const char* suffix : { "Ac", "Mn", "Mx", "Tg" }) {
                const KeyEntry* entry = find(machine, fanKey(fan, suffix));
                QVERIFY2(entry != nullptr, suffix);
                QCOMPARE(entry->type, type);
            }
            QVERIFY(find(machine, fanKey(fan, "Tg"))->isWritable());
            QVERIFY(!find(machine, fanKey(fan, "Ac"))->isWritable());
            QCOMPARE(find(machine, fanKey(fan, "Md")) != nullptr, !mask);
            QCOMPARE(find(machine, fanKey(fan, "ID")) != nullptr, mask);
        }
        QVERIFY(find(machine, fanKey(fans, "Ac")) == nullptr);
    }

    void machinesWithModeKeysHaveTheDriver_data() { addRows(true); }
    void machinesWithModeKeysHaveTheDriver()
    {
        QFETCH(QString, name);
        const MachineDescription machine = described(name);
        QCOMPARE(machine.hasDriver, find(machine, "F0Md") != nullptr);
    }

    void aPassiveMachineHasNoFans()
    {
        const MachineDescription machine = described(QStringLiteral("MacBook10,1"));
        QVERIFY(machine.fans.empty());
        QCOMPARE(find(machine, "FNum")->value, QByteArray(1, '\0'));
        QVERIFY(find(machine, "F0Mn") == nullptr);
    }

    void anUnknownNameIsAnError()
    {
        QString error;
        QVERIFY(!MachineDescription::load(QStringLiteral("PowerMac1,1"), error));
        QVERIFY(error.contains(QStringLiteral("PowerMac1,1")));
    }

    void aBrokenFileIsAnError_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<QString>("complaint");
        const QByteArray frame
            = "{'name':'X','dmi':{'sys_vendor':'Apple Inc.','product_name':'X'},"
              "'processor':{'name':'P','packages':1,'cores':1,'threads':1,'megahertz':1},";
        const auto row = [&frame](const char* name, const QByteArray& rest, const char* complaint) {
            QTest::newRow(name) << QByteArray(frame + rest).replace('\'', '"')
                                << QString::fromLatin1(complaint);
        };
        QTest::newRow("no JSON") << QByteArray("{") << QStringLiteral("at byte");
        QTest::newRow("empty") << QByteArray("{}") << QStringLiteral("no name");
        row("few keys",
            "'controller':{'fanType':'fpe2','fanControl':'mask','temperatureType':'sp78'}}",
            "only 3 keys");
        row("unknown list", "'controller':{'include':['nothing']}}", "keys/nothing.json");
        row("malformed key line", "'controller':{'keys':['FS! ui16 C0 00 0']}}", "Not a key line");
        row("odd digits", "'controller':{'keys':['FS! ui16 C0 000']}}", "Not a key line");
        row("twice", "'controller':{'keys':['LKSB {lkb 50 00','LKSB {lkb 50 00']}}", "twice");
        row("impossible heat", "'heat':[{'name':'cpu','capacity':0,'loss':1}]}",
            "impossible numbers");
        row("foreign neighbour",
            "'heat':[{'name':'cpu','capacity':1,'loss':1,'near':'gpu','share':0.5}]}",
            "no such neighbour");
        row("GPU without numbers",
            "'heat':[{'name':'cpu','capacity':1,'loss':1}],"
            "'gpus':[{'name':'Radeon','address':'0000:01:00.0','vendor':'AMD','device':'6720',"
            "'heat':'cpu'}]}",
            "is not described");
        row("GPU off the bus",
            "'heat':[{'name':'cpu','capacity':1,'loss':1}],"
            "'gpus':[{'name':'Radeon','address':'../../x','vendor':'1002','device':'6720',"
            "'heat':'cpu'}]}",
            "is not described");
        row("GPU without heat",
            "'gpus':[{'name':'Radeon','address':'0000:01:00.0','vendor':'1002',"
            "'device':'6720','heat':'gpu'}]}",
            "is no heat source");
        row("two GPUs in one place",
            "'heat':[{'name':'cpu','capacity':1,'loss':1}],"
            "'gpus':[{'name':'Radeon','address':'0000:01:00.0','vendor':'1002',"
            "'device':'6720','heat':'cpu'},"
            "{'name':'GeForce','address':'0000:01:00.0','vendor':'10de','device':'0fe9',"
            "'heat':'cpu'}]}",
            "another one's place");
        row("fans without controller", "'fans':[{'name':'Main'}]}", "without a controller");
    }
    void aBrokenFileIsAnError()
    {
        QFETCH(QByteArray, contents);
        QFETCH(QString, complaint);
        QTemporaryFile file(QDir::tempPath() + QStringLiteral("/XXXXXX.json"));
        QVERIFY(file.open());
        file.write(contents);
        file.close();
        QString error;
        QVERIFY(!MachineDescription::load(file.fileName(), error));
        QVERIFY2(error.contains(complaint), qPrintable(error));
    }

    void aMachineCanComeFromAFile()
    {
        QTemporaryFile file(QDir::tempPath() + QStringLiteral("/XXXXXX.json"));
        QVERIFY(file.open());
        QFile shipped(QStringLiteral(":/macsim/machines/MacBookPro11,3.json"));
        static_cast<void>(MachineDescription::names()); // registers the shipped files
        QVERIFY(shipped.open(QIODevice::ReadOnly));
        file.write(shipped.readAll().replace("\"MacBookPro11,3\"", "\"MacBookPro99,9\""));
        file.close();
        QString error;
        const auto machine = MachineDescription::load(file.fileName(), error);
        QVERIFY2(machine.has_value(), qPrintable(error));
        QCOMPARE(machine->name, QStringLiteral("MacBookPro99,9"));
    }

private:
    static void addRows(bool macsOnly)
    {
        QTest::addColumn<QString>("name");
        const QStringList names = MachineDescription::names();
        for (const QString& name : names) {
            if (!macsOnly || !foreignMachines.contains(name)) {
                QTest::newRow(qPrintable(name)) << name;
            }
        }
    }
};

BRISORA_TEST_MAIN(MachinesTest, QCoreApplication)

#include "test_macsim_machines.moc"
