// The shared library as a host loads it: by path, looking its entry points up by name.

#include <gtest/gtest.h>

#include <dlfcn.h>

TEST(SharedLibrary, RefreshAutoConfigIsFoundByItsPlainName) {
    void* handle = dlopen(KOQDDE_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    EXPECT_NE(dlsym(handle, "RefreshAutoConfig"), nullptr) << dlerror();
    dlclose(handle);
}
