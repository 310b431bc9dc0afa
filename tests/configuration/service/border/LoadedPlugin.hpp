/// Loads the plugin so that its symbols, and those of the libraries that it brings, stay its own.
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
    // Never closed: objects and exceptions whose code it has may outlive every user.
    void* const handle;
};

/// @return the one plugin of this program
inline const LoadedPlugin& plugin() {
    static const LoadedPlugin loaded(TEST_PLUGIN);
    return loaded;
}

} // namespace test
