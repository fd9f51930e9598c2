#include "app/smc/transport_facts_windows.h"

#include <string>

#include <windows.h>
#include <softpub.h>
#include <wintrust.h>

#include <QFileInfo>

#include "app/smc/reversed_name.h"
#include "build_config.h"
#include "core/machine_registry.h"

namespace SMC {

namespace {

// What the system finds out about the signature within a file.
class Signature {
public:
    explicit Signature(const QString& path)
        : m_path(path.toStdWString())
    {
        m_file.cbStruct = sizeof(m_file);
        m_file.pcwszFilePath = m_path.c_str();
        m_data.cbStruct = sizeof(m_data);
        m_data.dwUIChoice = WTD_UI_NONE;
        m_data.fdwRevocationChecks = WTD_REVOKE_NONE;
        m_data.dwUnionChoice = WTD_CHOICE_FILE;
        m_data.pFile = &m_file;
        m_data.dwProvFlags = WTD_REVOCATION_CHECK_NONE | WTD_CACHE_ONLY_URL_RETRIEVAL;
        verify(WTD_STATEACTION_VERIFY);
    }
    Signature(const Signature&) = delete;
    Signature& operator=(const Signature&) = delete;
    ~Signature() { verify(WTD_STATEACTION_CLOSE); }

    // The time at which the first signer signed; none without a signature.
    [[nodiscard]] std::optional<FILETIME> time() const
    {
        CRYPT_PROVIDER_DATA* const provider = WTHelperProvDataFromStateData(m_data.hWVTStateData);
        if (provider == nullptr) {
            return std::nullopt;
        }
        const CRYPT_PROVIDER_SGNR* const signer
            = WTHelperGetProvSignerFromChain(provider, 0, FALSE, 0);
        return signer == nullptr ? std::nullopt : std::optional(signer->sftVerifyAsOf);
    }

private:
    // The result tells whether the signature is trusted, which doesn't matter here.
    void verify(DWORD action)
    {
        GUID genericVerify = WINTRUST_ACTION_GENERIC_VERIFY_V2;
        m_data.dwStateAction = action;
        WinVerifyTrust(nullptr, &genericVerify, &m_data);
    }

    const std::wstring m_path;
    WINTRUST_FILE_INFO m_file {};
    WINTRUST_DATA m_data {};
};

} // namespace

std::unique_ptr<TransportFacts> makeTransportFacts()
{
    return std::make_unique<TransportFactsWindows>(turnedRound(BuildConfig::halDriverReversed));
}

TransportFactsWindows::TransportFactsWindows(const QString& halDriverPath)
    : m_halDriverPath(halDriverPath)
{
}

QString TransportFactsWindows::releaseId()
{
    const core::MachineRegistryKey key(
        QStringLiteral("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion"));
    return key.text(QStringLiteral("ReleaseId"));
}

bool TransportFactsWindows::halDriverExists() { return QFileInfo(m_halDriverPath).isFile(); }

std::optional<int> TransportFactsWindows::halDriverSigningYear()
{
    const std::optional<FILETIME> signingTime = Signature(m_halDriverPath).time();
    FILETIME localTime {};
    SYSTEMTIME date {};
    if (!signingTime || FileTimeToLocalFileTime(&*signingTime, &localTime) == 0
        || FileTimeToSystemTime(&localTime, &date) == 0) {
        return std::nullopt;
    }
    return date.wYear;
}

std::optional<std::uint64_t> TransportFactsWindows::halDriverSize()
{
    const QFileInfo file(m_halDriverPath);
    if (!file.isFile()) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(file.size());
}

bool TransportFactsWindows::softwareKeyExists(const QString& key)
{
    return core::MachineRegistryKey(key).isOpen();
}

} // namespace SMC
