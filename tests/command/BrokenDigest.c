/* Comes before the library of checksums in a command that is started with it: they fail for no reason, or there is no
   memory for them where QUARRY_NO_MEMORY is set. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <openssl/evp.h>
#include <stdlib.h>
#include <string.h>

EVP_MD_CTX* EVP_MD_CTX_new(void) {
    EVP_MD_CTX* (*make)(void) = NULL;
    void* const found = dlsym(RTLD_NEXT, "EVP_MD_CTX_new");
    memcpy(&make, &found, sizeof make);
    return getenv("QUARRY_NO_MEMORY") != NULL ? NULL : make();
}

int EVP_DigestUpdate(EVP_MD_CTX* ctx, const void* d, size_t cnt) {
    (void)ctx;
    (void)d;
    (void)cnt;
    return 0;
}
