#include "symbologies/ZintLibrary.h"

#include <dlfcn.h>

#include <string>

#include "errors/KT_Error.h"

namespace {

[[noreturn]] void failToLoad(void* handle)
{
    const char* error = dlerror();
    const std::string reason = error != nullptr ? error : "no reason given";
    if (handle != nullptr)
        dlclose(handle);
    throw KT_ERROR::kt_exception("error loading the barcode library: " + reason);
}

template <typename Function>
void bind(void* handle, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(handle, name));
    if (function == nullptr)
        failToLoad(handle);
}

}  // namespace

ZintLibrary openZintLibrary(const char* soname)
{
    void* handle = dlopen(soname, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        failToLoad(nullptr);
    ZintLibrary library{};
    bind(handle, "ZBarcode_Create", library.create);
    bind(handle, "ZBarcode_Clear", library.clear);
    bind(handle, "ZBarcode_Delete", library.destroy);
    bind(handle, "ZBarcode_Encode", library.encode);
    return library;
}

const ZintLibrary& zintLibrary()
{
    static const ZintLibrary library = openZintLibrary(KTR_ZINT_SONAME);
    return library;
}
