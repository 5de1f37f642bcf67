#ifndef ZEL_ZEL_H
#define ZEL_ZEL_H

/*
 * Portrait effects for any program: a C interface, C99, without a C++ type across the border.
 *
 * Threads   Every function may be called from any number of threads at once, on one context or on several.
 *           Two things belong to one thread at a time: an object while it is destroyed, and pixels while a
 *           call works on them.
 * Errors    What can fail returns a zel_status. On anything but ZEL_OK, zel_message() says why, and the
 *           pixels and outputs of the call are as they were. No call throws, exits or prints.
 * Structs   A struct that the caller fills begins with struct_size: set it to sizeof. Fields that a later
 *           version adds are then known to be missing, and every field left at zero means its default.
 * Ownership What a function hands out through a zel_..._create, _find, _decode or _draw call is the
 *           caller's until the matching _destroy. Strings and infos handed out live as long as the object
 *           they belong to; those of effects live as long as the library. Nothing of the caller's is kept
 *           after a call, but for the log's function and its user pointer.
 * Texts     UTF-8, one line, in English.
 */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32) && defined(ZEL_BUILDING)
#define ZEL_API __declspec(dllexport)
#elif defined(_WIN32)
#define ZEL_API __declspec(dllimport)
#else
#define ZEL_API __attribute__((visibility("default")))
#endif

/* The version that this header belongs to. */
#define ZEL_VERSION_MAJOR 1
#define ZEL_VERSION_MINOR 0

/** The version of the loaded library, "1.0.0". Within one major number programs go on unchanged. */
ZEL_API const char* zel_version(void);

/* ---- Status ---- */

typedef enum zel_status {
    ZEL_OK = 0,
    ZEL_BAD_ARGUMENT = 1,  /**< a null or misaligned pointer, a size or stride out of range, no struct_size */
    ZEL_UNKNOWN_NAME = 2,  /**< no such effect, parameter, face or plane; the message tells the nearest */
    ZEL_BAD_VALUE = 3,     /**< a value of the wrong kind, out of range or NaN, or one that must be given */
    ZEL_MISSING_INPUT = 4, /**< the effect needs faces, a mask, a second picture; or it takes none */
    ZEL_BAD_ASSET = 5,     /**< a file of the data folder is missing or damaged */
    ZEL_NOT_AVAILABLE = 6, /**< this installation, or this context's settings, cannot do it */
    ZEL_BAD_FILE = 7,      /**< a picture, face data or a table that cannot be read */
    ZEL_NO_MEMORY = 8,
    ZEL_CANCELLED = 9, /**< the progress function said so */
    ZEL_FAILED = 10    /**< the work failed; the message says why */
} zel_status;

/** Why the last call that failed on this thread did; empty before the first. Valid until the next call of this
 *  interface on the thread. */
ZEL_API const char* zel_message(void);

/** The name of a status, "ZEL_BAD_VALUE". */
ZEL_API const char* zel_status_name(zel_status status);

/* ---- Contexts ---- */

typedef enum zel_log_level { ZEL_LOG_ERROR = 0, ZEL_LOG_DEBUG = 1, ZEL_LOG_INFO = 2 } zel_log_level;

/**
 * Takes one message of the engine. May be called from any thread that works for a call on the context, and
 * from several at once.
 * @param source  "file.cpp(24)" of an error, null where not told
 */
typedef void (*zel_log_function)(void* user, zel_log_level level, const char* message, const char* source);

/** Where depth of field may draw. */
typedef enum zel_gl {
    /** A context of its own without a window, made and left within each call. Where there is none, or a driver in
     *  software, the processor draws. */
    ZEL_GL_IF_THERE = 0,
    /** The processor draws. */
    ZEL_GL_NEVER = 1,
    /** The caller's own context, current on the calling thread; all its state is as it was after the call. One
     *  that is older than 3.3 or in software is left alone, and where none is current there is nothing to use: the
     *  processor draws. */
    ZEL_GL_CURRENT = 2
} zel_gl;

/** What a context is told at its beginning. Settings travel with each call to all threads that work for it;
 *  two contexts with different ones never meet. */
typedef struct zel_settings {
    size_t struct_size;
    const char* assets;   /**< data folder; null: found by itself, see docs/embedding.md */
    zel_log_function log; /**< null: messages are dropped */
    void* log_user;
    int threads; /**< 1 to 256; 0: one for each processor. No result depends on it. */
    zel_gl gl;
} zel_settings;

typedef struct zel_context zel_context;

/** @param settings  null: all defaults */
ZEL_API zel_status zel_context_create(const zel_settings* settings, zel_context** out);

/** Null is fine. Faces, pictures and portraits live on without their context. */
ZEL_API void zel_context_destroy(zel_context* context);

/** The data folder that the context found; empty where there is none. */
ZEL_API const char* zel_context_assets(const zel_context* context);

/* ---- Pixels ---- */

typedef enum zel_format {
    ZEL_RGBA8 = 0,
    ZEL_BGRA8 = 1,
    ZEL_GRAY8 = 2, /**< masks, 0 to 255; depth, where larger is nearer */
    ZEL_GRAY16 = 3 /**< 16-bit samples in the machine's order; given out by portraits alone */
} zel_format;

/** Colour is multiplied by alpha. Effects work on straight colour; where alpha is 255 both are one. */
#define ZEL_PREMULTIPLIED 1u

/** Longest side of a picture. */
#define ZEL_LONGEST_SIDE 32767

/** Pixels in the caller's memory, top row first. */
typedef struct zel_pixels {
    void* data;
    int width, height; /**< 1 to ZEL_LONGEST_SIDE */
    size_t stride;     /**< bytes from row to row, at least a row's; 0: rows are packed */
    zel_format format;
    unsigned flags; /**< 0 or ZEL_PREMULTIPLIED */
} zel_pixels;

/* ---- Faces ---- */

#define ZEL_LANDMARKS 83

/** Landmarks that are seen or hidden together. Left and right are the picture's, as in the landmarks' table. */
typedef enum zel_face_group {
    ZEL_GROUP_CONTOUR = 0, /**< with the chin */
    ZEL_GROUP_LEFT_BROW = 1,
    ZEL_GROUP_RIGHT_BROW = 2,
    ZEL_GROUP_LEFT_EYE = 3, /**< lids and pupil */
    ZEL_GROUP_RIGHT_EYE = 4,
    ZEL_GROUP_NOSE = 5,
    ZEL_GROUP_MOUTH = 6
} zel_face_group;

#define ZEL_FACE_GROUPS 7

/** One face, in fractions of the picture: 0,0 is the top left corner, 1,1 the bottom right one. Numbers lie in
 *  -1 to 2, since a face may reach over the edge. The landmarks' order is drawn in docs/landmarks.md. */
typedef struct zel_face {
    float rect[4]; /**< left, top, width, height */
    float points[ZEL_LANDMARKS][2];
    float confidence; /**< 0 to 1 where the face was found; below 0: not told */
    /** By zel_face_group, how surely its landmarks are a guess, because dark glasses or hair hide what they stand
     *  for: 0 (seen, or not told) to 1. Above a half, effects on eyes leave an eye alone. */
    float guessed[ZEL_FACE_GROUPS];
} zel_face;

typedef struct zel_faces zel_faces;

/** A list of faces that the caller brings. The array has stride sizeof(zel_face); at most 1024.
 *  @param width   pixels of the picture that they were found on, for zel_faces_to_json
 *  @param height  likewise */
ZEL_API zel_status zel_faces_create(const zel_face* faces, size_t count, int width, int height,
                                    zel_faces** out);

/** Finds faces, the largest first. A picture without one gives an empty list and ZEL_OK. Without the finder
 *  on this machine: ZEL_NOT_AVAILABLE, and the message names what is missing. */
ZEL_API zel_status zel_find_faces(zel_context* context, const zel_pixels* pixels, zel_faces** out);

/** Face data as JSON: {"image": {"width", "height"}, "faces": [{"rect": [4], "points": [[x, y] x 83],
 *  "confidence", "guessed": {"leftEye": 0.9}}]}, all as in zel_face; of the groups only those above 0 are told. */
ZEL_API zel_status zel_faces_from_json(const char* text, size_t length, zel_faces** out);

/** The text lives as long as the list, or until the next such call on it. */
ZEL_API zel_status zel_faces_to_json(zel_faces* faces, const char** text, size_t* length);

/** 0 for null. */
ZEL_API size_t zel_faces_count(const zel_faces* faces);

/** The size that they were found at. */
ZEL_API zel_status zel_faces_size(const zel_faces* faces, int* width, int* height);

ZEL_API zel_status zel_faces_get(const zel_faces* faces, size_t index, zel_face* out);

/** The dense points that effects make of a face's landmarks, in pixels of a picture of that size, in the order of
 *  docs/face-points.md.
 *  @param points  room for ZEL_FACE_POINTS pairs */
#define ZEL_FACE_POINTS 310
ZEL_API zel_status zel_faces_interpolate(const zel_faces* faces, size_t index, int width, int height,
                                         float (*points)[2]);

/** Null is fine. */
ZEL_API void zel_faces_destroy(zel_faces* faces);

/* ---- Effects, described by data ---- */

typedef enum zel_kind {
    ZEL_NUMBER = 0,
    ZEL_WHOLE_NUMBER = 1,
    ZEL_CHOICE = 2,
    ZEL_SWITCH = 3, /**< "true" or "false" */
    ZEL_POINT = 4,  /**< "X,Y" in fractions of the picture, or a word of the choices */
    ZEL_COLOUR = 5, /**< "#rrggbb" */
    ZEL_FILE = 6,   /**< a path */
    ZEL_TEXT = 7
} zel_kind;

/** One parameter. Handed out only, so that fields may be added at the end. */
typedef struct zel_parameter {
    const char* name;
    const char* title; /**< for a dialog, "Blur level" */
    const char* help;  /**< one sentence */
    const char* unit;  /**< "pixels", "degrees"; empty: a plain number */
    zel_kind kind;
    double minimum, maximum;    /**< numbers; equal where there is no limit */
    double step;                /**< a sensible step of a control */
    const char* default_value;  /**< as text; null: must be given */
    const char* const* choices; /**< of ZEL_CHOICE, and words that a ZEL_POINT takes; null-terminated */
    int advanced;               /**< not 0: for a second page */
} zel_parameter;

typedef enum zel_need { ZEL_NO = 0, ZEL_OPTIONAL = 1, ZEL_REQUIRED = 2 } zel_need;

/** One effect. Handed out only, so that fields may be added at the end. */
typedef struct zel_effect {
    const char* name;      /**< "auto-slim-face" */
    const char* title;     /**< "Slim faces" */
    const char* summary;   /**< one sentence */
    const char* operation; /**< the C++ operation that it runs */
    const char* example;   /**< a command line */
    const zel_parameter* const* parameters;
    size_t parameter_count;
    /* What it takes beside the picture, and what it can give back. */
    zel_need faces, mask, second, depth;
    zel_need mask_out, depth_out;
    zel_need gl;        /**< ZEL_OPTIONAL: uses OpenGL 3.3 where a graphics card has it, else the processor */
    const char* advice; /**< two sentences: when to use it, and what its main settings do at their ends */
} zel_effect;

ZEL_API size_t zel_effect_count(void);

/** In the order of menus; null beyond the last. */
ZEL_API const zel_effect* zel_effect_at(size_t index);

/** ZEL_UNKNOWN_NAME tells the nearest name. */
ZEL_API zel_status zel_effect_find(const char* name, const zel_effect** out);

/** One value of a parameter. A number may be given as one, or as text with a point, whatever the locale. */
typedef struct zel_value {
    const char* name;
    const char* text; /**< null: number counts */
    double number;
} zel_value;

/** What a set of values means, without a picture. */
typedef struct zel_meaning {
    size_t struct_size;
    int uses_faces;      /**< whether these values make use of faces at all */
    const char* caution; /**< what the user may not expect, one sentence; empty: nothing. Valid until the next
                              call on the thread. */
} zel_meaning;

/** Checks values as zel_apply would.
 *  @param meaning  may be null */
ZEL_API zel_status zel_check_values(const char* effect, const zel_value* values, size_t count,
                                    zel_meaning* meaning);

/**
 * Told between the stages of a long call, on the calling thread.
 * @param fraction  0 to 1
 * @param stage     "finding faces"
 * @return 0 to go on, anything else to cancel: the call returns ZEL_CANCELLED and leaves the picture as it was
 * It may call this interface, but not destroy what the running call works with.
 */
typedef int (*zel_progress_function)(void* user, double fraction, const char* stage);

/** What an effect takes beside the picture. */
typedef struct zel_inputs {
    size_t struct_size;
    const zel_value* values;
    size_t value_count;
    const zel_faces* faces;         /**< null: none */
    const zel_pixels* mask;         /**< ZEL_GRAY8, 255 where it acts; null: none */
    const zel_pixels* second;       /**< four channels; null: none */
    const zel_pixels* depth;        /**< ZEL_GRAY8, any size, nearer is larger; null: estimated */
    const zel_pixels* mask_out;     /**< ZEL_GRAY8 of the picture's size, to be filled; null: not asked for */
    const zel_pixels* depth_out;    /**< likewise */
    zel_progress_function progress; /**< null: none */
    void* progress_user;
} zel_inputs;

/**
 * Changes the picture by one effect. The work is done on a copy: on any failure the picture is as it was.
 * Faces that the effect needs are not searched for: see zel_find_faces.
 * @param pixels  four channels
 * @param inputs  null: all parameters at their defaults, nothing beside the picture
 */
ZEL_API zel_status zel_apply(zel_context* context, const char* effect, const zel_pixels* pixels,
                             const zel_inputs* inputs);

/* ---- Depth and masks ---- */

/** Whose person mask is made where none is given. */
typedef enum zel_subject {
    ZEL_SUBJECT_AUTO = 0,   /**< the subject's people, where a network is installed and there is a face */
    ZEL_SUBJECT_PERSON = 1, /**< also without a face; a line in the log where that cannot be */
    ZEL_SUBJECT_NONE = 2    /**< nobody's */
} zel_subject;

typedef struct zel_depth_options {
    size_t struct_size;
    const char* network;      /**< an ONNX file or a folder that holds one; null: the installed network */
    const zel_pixels* person; /**< ZEL_GRAY8 mask of the person, any size; null: none */
    int raw;                  /**< not 0: as the network gives it, unrefined; takes no person mask */
    zel_progress_function progress;
    void* progress_user;
    /** Whether a person mask is made by a network where none is given: the subject's people then lie in one plane,
     *  the one of their nearest face. */
    zel_subject subject;
    const zel_faces* faces; /**< for such a mask; null: none */
    /** ZEL_GRAY8 of the picture's size, to be filled with the mask that was used, with zeros where there was none;
     *  null: not asked for. */
    const zel_pixels* person_out;
} zel_depth_options;

/** Estimates the depth of a picture.
 *  @param out  ZEL_GRAY8 of the picture's size, to be filled: larger is nearer
 *  ZEL_NOT_AVAILABLE where the inference module is not installed. */
ZEL_API zel_status zel_estimate_depth(zel_context* context, const zel_pixels* pixels,
                                      const zel_depth_options* options, const zel_pixels* out);

/** Whether zel_estimate_depth could run: ZEL_OK where the network can be loaded. The context keeps it loaded.
 *  @param network  as in zel_depth_options */
ZEL_API zel_status zel_check_depth(zel_context* context, const char* network);

typedef enum zel_mask_kind { ZEL_MASK_SKIN = 0, ZEL_MASK_PERSON = 1 } zel_mask_kind;

/** Makes a mask of persons by a network: 255 where they are. There is none for skin: ZEL_NOT_AVAILABLE.
 *  @param faces  those whose people are meant; people who touch count as one. Null: all people, who are seen less
 *                well where they are small. Such faces without any face: nobody.
 *  @param out    ZEL_GRAY8 of the picture's size, to be filled
 *  ZEL_NOT_AVAILABLE where the network or the inference module is not installed, ZEL_BAD_ASSET where the network's
 *  file is damaged. */
ZEL_API zel_status zel_make_mask(zel_context* context, zel_mask_kind kind, const zel_pixels* pixels,
                                 const zel_faces* faces, const zel_pixels* out);

/* ---- Networks ---- */

/** One network file that the library makes use of where it is there. Handed out only, so that fields may be added at
 *  the end. */
typedef struct zel_network {
    const char* name;    /**< of the file, "faceDetector.onnx" */
    const char* purpose; /**< "finds faces" */
    const char* path;    /**< where it lies; empty: nowhere */
    const char* problem; /**< why it cannot be used, and what brings it; empty: it can */
} zel_network;

ZEL_API size_t zel_network_count(void);

/** What is there now, as the context would find it. Without a network for faces or persons other finders, or none,
 *  do its work: see docs/networks.md.
 *  @param out  valid until the next such call on the thread */
ZEL_API zel_status zel_network_at(zel_context* context, size_t index, const zel_network** out);

/* ---- Pictures that the library makes ---- */

typedef struct zel_picture zel_picture;

typedef struct zel_decode_options {
    size_t struct_size;
    int scrambled;    /**< not 0: the file carries a four-byte head and scrambled bytes */
    int on_white;     /**< not 0: transparent pixels are laid on white, and alpha becomes 255 */
    int longest_side; /**< pixels; a larger picture is reduced to it; 0: no limit */
} zel_decode_options;

/** Reads a picture as RGBA: PNG, JPEG, BMP, GIF, TGA, PSD, HDR, PIC, PNM. The orientation that a camera noted
 *  (EXIF) is neither applied nor told.
 *  @param options  null: all defaults */
ZEL_API zel_status zel_decode_file(zel_context* context, const char* path, const zel_decode_options* options,
                                   zel_picture** out);
ZEL_API zel_status zel_decode_memory(zel_context* context, const void* data, size_t length,
                                     const zel_decode_options* options, zel_picture** out);

/** Its pixels, which live as long as it does and may be changed. */
ZEL_API zel_status zel_picture_pixels(zel_picture* picture, zel_pixels* out);

/** Null is fine. */
ZEL_API void zel_picture_destroy(zel_picture* picture);

/* ---- Drawn portraits with their truth, to try effects on ---- */

typedef struct zel_portrait zel_portrait;

/** The parameters of a portrait beside size and seed; those without a value follow the seed. */
ZEL_API size_t zel_portrait_parameter_count(void);
ZEL_API const zel_parameter* zel_portrait_parameter_at(size_t index);

ZEL_API zel_status zel_draw_portrait(zel_context* context, int width, int height, unsigned seed,
                                     const zel_value* values, size_t count, zel_portrait** out);

/** The names of its planes in order: "picture" and "clean" (RGBA), masks such as "skin" (grey), "depth"
 *  (16 bits, larger is nearer); null beyond the last. */
ZEL_API const char* zel_portrait_plane_name(size_t index);

/** Pixels of one plane; they live as long as the portrait. */
ZEL_API zel_status zel_portrait_plane(zel_portrait* portrait, const char* name, zel_pixels* out);

/** Its face, exact, as a list of the caller's. */
ZEL_API zel_status zel_portrait_faces(const zel_portrait* portrait, zel_faces** out);

/** A circle in pixels. */
typedef struct zel_spot {
    float x, y, radius;
} zel_spot;

/** Circles of the portrait.
 *  @param kind  "irises" or "moles"
 *  @param spots  lives as long as the portrait */
ZEL_API zel_status zel_portrait_spots(zel_portrait* portrait, const char* kind, const zel_spot** spots,
                                      size_t* count);

/** Null is fine. */
ZEL_API void zel_portrait_destroy(zel_portrait* portrait);

#ifdef __cplusplus
}
#endif

#endif
