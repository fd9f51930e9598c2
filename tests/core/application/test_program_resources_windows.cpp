#include <vector>

#include <windows.h>

#include <QApplication>

#include "build_config.h"
#include "core/application/file_version.h"
#include "tests/support/testenvironment.h"

namespace {

// A text of the version resource, by its name.
QString versionText(const QString& name)
{
    std::vector<wchar_t> path(MAX_PATH);
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    DWORD ignored = 0;
    std::vector<BYTE> resource(GetFileVersionInfoSizeW(path.data(), &ignored));
    void* text = nullptr;
    UINT length = 0;
    const QString place = QStringLiteral("\\StringFileInfo\\040904B0\\") + name;
    if (resource.empty()
        || GetFileVersionInfoW(path.data(), 0, static_cast<DWORD>(resource.size()), resource.data())
            == 0
        || VerQueryValueW(resource.data(), place.toStdWString().c_str(), &text, &length) == 0) {
        return {};
    }
    return QString::fromWCharArray(static_cast<const wchar_t*>(text));
}

} // namespace

// What the program's file carries: tests are linked with the same resources.
class ProgramResourcesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFilesVersionIsTheBuilds()
    {
        const auto numbers = core::readFileVersion().numbers;
        QCOMPARE(numbers[0], BuildConfig::versionMajor);
        QCOMPARE(numbers[1], BuildConfig::versionMinor);
        QCOMPARE(numbers[2], BuildConfig::versionPatch);
        QCOMPARE(numbers[3], BuildConfig::versionBuild);
    }

    void theFilesTextsAreTheBuilds_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("ProductName") << QString::fromUtf8(BuildConfig::productName);
        QTest::newRow("CompanyName") << QString::fromUtf8(BuildConfig::organizationName);
        QTest::newRow("LegalCopyright")
            << QString::fromUtf8(BuildConfig::copyrightLine).arg(QStringLiteral("2026"));
        QTest::newRow("NoSuchText") << QString();
    }
    void theFilesTextsAreTheBuilds()
    {
        QTEST(versionText(QString::fromUtf8(QTest::currentDataTag())), "text");
    }

    // Windows starts no program that asks for a newer system, and treats one for an
    // older system as old.
    void theFileIsMadeForWindows7()
    {
        const auto* const start = reinterpret_cast<const BYTE*>(GetModuleHandleW(nullptr));
        const auto* const program = reinterpret_cast<const IMAGE_DOS_HEADER*>(start);
        const auto& header
            = reinterpret_cast<const IMAGE_NT_HEADERS*>(start + program->e_lfanew)->OptionalHeader;
        QCOMPARE(int { header.MajorSubsystemVersion }, 6);
        QCOMPARE(int { header.MinorSubsystemVersion }, 1);
        QCOMPARE(int { header.MajorOperatingSystemVersion }, 6);
        QCOMPARE(int { header.MinorOperatingSystemVersion }, 1);
    }
};

BRISORA_TEST_MAIN(ProgramResourcesTest, QApplication)
#include "test_program_resources_windows.moc"
