#include "app/sysinfo/wmivalue.h"

#include <windows.h>
#include <oleauto.h>

namespace WmiValue {

std::optional<QString> text(const tagVARIANT& value)
{
    if (value.vt != VT_BSTR) {
        return std::nullopt;
    }
    return QString::fromWCharArray(value.bstrVal, static_cast<int>(SysStringLen(value.bstrVal)));
}

QByteArray bytes(const tagVARIANT& value)
{
    LONG first = 0;
    LONG last = 0;
    void* elements = nullptr;
    if (value.vt != (VT_ARRAY | VT_UI1) || SafeArrayGetDim(value.parray) != 1
        || FAILED(SafeArrayGetLBound(value.parray, 1, &first))
        || FAILED(SafeArrayGetUBound(value.parray, 1, &last))
        || FAILED(SafeArrayAccessData(value.parray, &elements))) {
        return {};
    }
    const QByteArray result(static_cast<const char*>(elements), last - first + 1);
    SafeArrayUnaccessData(value.parray);
    return result;
}

} // namespace WmiValue
