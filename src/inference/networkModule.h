#pragma once

/* What the inference module gives: networks and the cascade finder, behind a table of functions, so that nothing
   of the library that does the work is linked. C99: a module and its users may come from two compilers.

   Any thread may call; one network or cascade serves one thread at a time. Nothing is thrown: what fails
   returns null or 0 and writes why into the caller's buffer, one line, cut to its size, ended by a zero. A
   buffer of size 0 may be null. */

/* NOLINTBEGIN(modernize-use-using,modernize-deprecated-headers,modernize-redundant-void-arg): this is C. */
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Number of this interface; another one means another layout of what stands below. */
#define ZEL_NETWORK_MODULE_ABI 1u

typedef struct ZelNetwork ZelNetwork;
typedef struct ZelCascade ZelCascade;

enum { ZEL_NETWORK_MOST_DIMS = 4 };

/* A block of floats, an input or an output of a network. The last dimension runs fastest. */
typedef struct ZelNetworkArray {
    const char* name; /* of an input: null for the only one */
    int dimCount;     /* 1 to 4; an output has at least 2 */
    int dims[ZEL_NETWORK_MOST_DIMS];
    const float* data;
} ZelNetworkArray;

/* The outputs of a run; they are the network's and live until its next run or its end. */
typedef struct ZelNetworkOutputs {
    const ZelNetworkArray* arrays;
    size_t count;
} ZelNetworkOutputs;

/* Where and how to look for objects of a cascade. */
typedef struct ZelCascadeSearch {
    const unsigned char* grey; /* width by height bytes, rows packed */
    int width, height;
    int searchedWidth,
        searchedHeight; /* the picture is brought to this size first, and its histogram evened */
    double step;        /* from one size of object to the next, above 1 */
    int votes;          /* the least number of views that must agree */
    int smallest;       /* side of the smallest object, in pixels of the searched size */
} ZelCascadeSearch;

/* Where an object may be, in pixels of the searched size. */
typedef struct ZelCascadeBox {
    int x, y, width, height, votes;
} ZelCascadeBox;

/* What a search found, in no order; the cascade's, until its next search or its end. */
typedef struct ZelCascadeBoxes {
    const ZelCascadeBox* boxes;
    size_t count;
} ZelCascadeBoxes;

typedef struct ZelNetworkModule {
    unsigned abi; /* ZEL_NETWORK_MODULE_ABI; nothing behind it may be read where it is another */

    /* Reads an ONNX file's bytes, which stay the caller's and may go after the call. */
    ZelNetwork* (*openNetwork)(const unsigned char* file, size_t size, char* reason, size_t reasonSize);
    /* Runs on one input, which is only read. Outputs come in the order of the names, or all of them in the
       file's order where outputCount is 0.
       threads: how many may work at once, and never more than the library below would take by itself; 0 leaves
       that to it. Runs that ask for different numbers wait for one another: the number is one for the process. */
    int (*runNetwork)(ZelNetwork* network, const ZelNetworkArray* input, const char* const* outputNames,
                      size_t outputCount, int threads, ZelNetworkOutputs* outputs, char* reason,
                      size_t reasonSize);
    void (*closeNetwork)(ZelNetwork* network); /* null is fine */

    /* Reads a cascade's file. */
    ZelCascade* (*openCascade)(const char* path, char* reason, size_t reasonSize);
    int (*searchCascade)(ZelCascade* cascade, const ZelCascadeSearch* search, ZelCascadeBoxes* found,
                         char* reason, size_t reasonSize);
    void (*closeCascade)(ZelCascade* cascade); /* null is fine */
} ZelNetworkModule;

/* The one name that the module shows. */
#define ZEL_NETWORK_MODULE_ENTRY "zelNetworkModule"
typedef const ZelNetworkModule* (*ZelNetworkModuleEntry)(void);
const ZelNetworkModule* zelNetworkModule(void);

#ifdef __cplusplus
}
#endif
/* NOLINTEND(modernize-use-using,modernize-deprecated-headers,modernize-redundant-void-arg) */
