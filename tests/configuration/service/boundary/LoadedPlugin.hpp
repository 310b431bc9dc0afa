/// Loads the plugin, keeping its symbols and those of its libraries out of the global scope.
#pragma once

#include <dlfcn.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace test {

class LoadedPlugin {
public:
    explicit LoadedPlugin(const std::string& path)
        : handle(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (handle == nullptr)
            throw std::runtime_error(::dlerror());
    }

    template <typename Function>
    Function* find(const char* name) const {
        void* const address = ::dlsym(handle, name);
        if (address == nullptr)
            throw std::runtime_error(::dlerror());
        return reinterpret_cast<Function*>(address);
    }

private:
    // Never closed, because objects and exceptions that need its code may still exist.
    void* const handle;
};

/// @return the only plugin of this program
inline const LoadedPlugin& plugin() {
    static const LoadedPlugin loaded(TEST_PLUGIN);
    return loaded;
}

} // namespace test
