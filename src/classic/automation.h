/* Automation arrays and strings. On Windows these are OLE Automation's own; elsewhere this header brings the
 * same layout and the handful of functions that make, lock and free them, so that the ...VB_Core functions
 * can be called there too. C11 and C++. */
#ifndef PRAL_AUTOMATION_H
#define PRAL_AUTOMATION_H

#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
/* windows.h first */
#include <oleauto.h>

#else

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

typedef int32_t HRESULT;
typedef uint16_t VARTYPE;
typedef unsigned short OLECHAR;
typedef OLECHAR* BSTR;

enum { VT_I4 = 3, VT_R4 = 4, VT_R8 = 5 };
enum { S_OK = 0, E_UNEXPECTED = (int32_t)0x8000FFFF, E_INVALIDARG = (int32_t)0x80070057 };
enum { DISP_E_ARRAYISLOCKED = (int32_t)0x8002000D };

#define FAILED(result) ((HRESULT)(result) < 0)
#define SUCCEEDED(result) ((HRESULT)(result) >= 0)

typedef struct tagSAFEARRAYBOUND {
    uint32_t cElements;
    int32_t lLbound;
} SAFEARRAYBOUND;

typedef struct tagSAFEARRAY {
    uint16_t cDims;
    uint16_t fFeatures;
    uint32_t cbElements;
    uint32_t cLocks;
    void* pvData;
    SAFEARRAYBOUND rgsabound[1]; /* cDims of them, the last dimension first */
} SAFEARRAY;

/* A new array of VT_R8, or of the 4-byte types VT_R4 and VT_I4, filled with zeros; null when there is no
 * memory. */
static inline SAFEARRAY* SafeArrayCreate(VARTYPE type, unsigned dimensions, SAFEARRAYBOUND* bounds) {
    const size_t extra = dimensions > 0 ? (dimensions - 1) * sizeof(SAFEARRAYBOUND) : 0;
    SAFEARRAY* array = (SAFEARRAY*)calloc(1, sizeof(SAFEARRAY) + extra);
    size_t elements = 1;
    if (array == NULL) return NULL;
    array->cDims = (uint16_t)dimensions;
    array->cbElements = type == VT_R8 ? 8 : 4;
    for (unsigned i = 0; i < dimensions; ++i) {
        array->rgsabound[dimensions - 1 - i] = bounds[i];
        elements *= bounds[i].cElements;
    }
    array->pvData = calloc(elements > 0 ? elements : 1, array->cbElements);
    if (array->pvData == NULL) {
        free(array);
        return NULL;
    }
    return array;
}

static inline SAFEARRAY* SafeArrayCreateVector(VARTYPE type, int32_t lower_bound, uint32_t elements) {
    SAFEARRAYBOUND bound;
    bound.cElements = elements;
    bound.lLbound = lower_bound;
    return SafeArrayCreate(type, 1, &bound);
}

static inline HRESULT SafeArrayLock(SAFEARRAY* array) {
    if (array == NULL) return E_INVALIDARG;
    if (array->cLocks >= 0xFFFF) return E_UNEXPECTED;
    ++array->cLocks;
    return S_OK;
}

static inline HRESULT SafeArrayUnlock(SAFEARRAY* array) {
    if (array == NULL) return E_INVALIDARG;
    if (array->cLocks == 0) return E_UNEXPECTED;
    --array->cLocks;
    return S_OK;
}

static inline HRESULT SafeArrayDestroy(SAFEARRAY* array) {
    if (array == NULL) return S_OK;
    if (array->cLocks > 0) return DISP_E_ARRAYISLOCKED;
    free(array->pvData);
    free(array);
    return S_OK;
}

/* A string of UTF-16 units: its length in bytes stands in the four bytes before the first unit. */
static inline BSTR SysAllocStringLen(const OLECHAR* text, unsigned length) {
    const uint32_t bytes = (uint32_t)(length * sizeof(OLECHAR));
    char* block = (char*)malloc(sizeof bytes + bytes + sizeof(OLECHAR));
    if (block == NULL) return NULL;
    memcpy(block, &bytes, sizeof bytes);
    if (text != NULL) memcpy(block + sizeof bytes, text, bytes);
    memset(block + sizeof bytes + bytes, 0, sizeof(OLECHAR));
    return (BSTR)(void*)(block + sizeof bytes);
}

static inline unsigned SysStringLen(BSTR text) {
    uint32_t bytes = 0;
    if (text != NULL) memcpy(&bytes, (const char*)text - sizeof bytes, sizeof bytes);
    return (unsigned)(bytes / sizeof(OLECHAR));
}

static inline void SysFreeString(BSTR text) {
    if (text != NULL) free((char*)text - sizeof(uint32_t));
}

#endif

#endif /* PRAL_AUTOMATION_H */
