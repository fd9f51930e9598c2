// Stands for the system's file manager: writes its command line, as it has got it,
// into the file that the variable BRISORA_TEST_COMMAND_LINE names. The file appears
// once it is whole.

#include <string>

#include <windows.h>

namespace {

constexpr int notUnderstood = 99;

std::wstring variable(const wchar_t* name)
{
    wchar_t value[4096] = L"";
    const DWORD length = GetEnvironmentVariableW(name, value, 4096);
    return length < 4096 ? std::wstring(value, length) : std::wstring();
}

bool write(const std::wstring& path, const std::wstring& text)
{
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    const DWORD size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    DWORD written = 0;
    const bool done = WriteFile(file, text.data(), size, &written, nullptr) && written == size;
    CloseHandle(file);
    return done;
}

} // namespace

int main()
{
    const std::wstring path = variable(L"BRISORA_TEST_COMMAND_LINE");
    const std::wstring begun = path + L".part";
    if (path.empty() || !write(begun, GetCommandLineW())) {
        return notUnderstood;
    }
    return MoveFileW(begun.c_str(), path.c_str()) ? 0 : notUnderstood;
}
