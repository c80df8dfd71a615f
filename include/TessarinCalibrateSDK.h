/**
 * TessarinCalibrateSDK.h - calibration of the images of the QK7 optical fingerprint scanner.
 *
 * A capture application loads the library into its process, creates one handle per scanner,
 * loads that scanner's calibration block and corrects every capture with Calibrate():
 *
 *     void*         handle = CalibrateCreate();
 *     unsigned long size   = 0;
 *     long          status = CalibrateSetData(handle, block, blockSize);
 *     if (status == QMT_SUCCESS)
 *         status = Calibrate(handle, capture, captureSize, NULL, &size);   learns the size: -21
 *     if (status == QMT_ERROR_TEMPLATE_SIZE) {
 *         out    = malloc(size);
 *         status = Calibrate(handle, capture, captureSize, out, &size);
 *     }
 *     if (status != QMT_SUCCESS)
 *         fprintf(stderr, "%ld %s\n", status, CalibrateGetErrorDescription(status));
 *     CalibrateDelete(&handle);
 *
 * Rules that hold for every function:
 *
 * - Status. A function that returns long answers QMT_SUCCESS (0) or one of the negative numbers
 *   below. CalibrateGetErrorDescription() has the words. Nothing is thrown across this interface,
 *   but for what CalibrateCreate() and the conversions of text tell.
 * - Failures that no list names. QMT_ERROR_INTERNAL also answers any C++ exception that is none of
 *   the library's, and QMT_FATAL_ERROR_TERMINATION_NECESSARY whatever else is thrown, as a
 *   VekLFLog() of the application may do. Nothing is put in order behind the latter: calibration
 *   data may be there, in part or not at all.
 * - Ending threads. A thread that is cancelled or ends itself within a call unwinds through it, and
 *   the call gives no status. Its handle can still be deleted or given calibration data anew.
 * - Order of tests. The tests are made in the order in which the comment of a function lists its
 *   statuses; where several failures come together, the first one listed is returned. Within a data
 *   block the tests follow its bytes, and an incomplete part is refused before its content.
 * - Ownership. Every block is the caller's. The library reads input blocks during the call only,
 *   keeps no pointer to them and never writes to them. It writes to an output block only when the
 *   call succeeds.
 * - Sizes count bytes. Where a size goes in and out, the caller passes the bytes available and
 *   finds the bytes needed or used; a block that is too small answers QMT_ERROR_TEMPLATE_SIZE.
 * - Threads. The library starts no thread, and takes no lock but to compute once what all of them
 *   share. A handle belongs to one thread at a time; different handles may be used in parallel.
 * - Foreign bytes. Bitmap, calibration and precalculated blocks are checked before they are
 *   trusted: whatever they claim, nothing outside the given bytes is read.
 *
 * Bitmap blocks are packed device-independent bitmaps in memory: a BITMAPINFOHEADER of 40 bytes,
 * little endian, the palette, then the lines, each padded to a multiple of 4 bytes. There is no
 * file header. An 8-bit block of w x h pixels with its full palette has
 * 40 + 1024 + ((w + 3) & ~3) * h bytes.
 */
#ifndef TESSARIN_CALIBRATE_SDK_H
#define TESSARIN_CALIBRATE_SDK_H

#include <stddef.h> /* NOLINT(modernize-deprecated-headers): C, too */

#ifndef TESSARIN_CALIBRATE_API
#if defined(__GNUC__)
#define TESSARIN_CALIBRATE_API __attribute__((visibility("default")))
#else
#define TESSARIN_CALIBRATE_API
#endif
#endif

#if defined(__GNUC__)
#define TESSARIN_CALIBRATE_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define TESSARIN_CALIBRATE_PRINTF(text, first)
#endif

/* Status numbers. */

/** No errors occurred. */
#define QMT_SUCCESS (0L)
/** A spline was asked to transform before its setup. */
#define QMT_ERROR_INITIALIZED (-1L)
/** The handle holds no calibration data. */
#define QMT_ERROR_NOT_INITIALIZED (-2L)
/** A bitmap pointer is null, or the bitmap has no header or pixels. */
#define QMT_ERROR_BITMAP_PTR (-10L)
/** Not one plane of grey values. */
#define QMT_ERROR_BITMAP_PLANE (-11L)
/** A bit depth that is not supported. */
#define QMT_ERROR_BITMAP_BITCOUNT (-12L)
/** A resolution out of range. */
#define QMT_ERROR_BITMAP_PELS (-13L)
/** An image of the wrong size. */
#define QMT_ERROR_BITMAP_DIMENSION (-14L)
/** No finger found. */
#define QMT_ERROR_BITMAP_NO_FINGER (-15L)
/** A compression that is not supported. */
#define QMT_ERROR_BITMAP_COMPRESSION (-31L)
/** A bitmap header of unknown size. */
#define QMT_ERROR_BITMAP_HEADERSIZE (-32L)
/** A data block pointer is null. */
#define QMT_ERROR_TEMPLATE_PTR (-20L)
/** A block differs from its size rule, or is too small for the result. */
#define QMT_ERROR_TEMPLATE_SIZE (-21L)
/** The pointer to the handle is null. */
#define QMT_ERROR_TEMPLATE_PTRPTR (-22L)
/** The result pointer is null. */
#define QMT_ERROR_TEMPLATE_PTR_NULL (-23L)
/** The pointer to a size or to a result is null. */
#define QMT_ERROR_TEMPLATE_SIZE_PTR (-24L)
/** A pixel format that is not handled. */
#define QMT_ERROR_FORMAT_NOTSUPPORTED (-33L)
/** A parameter out of range. */
#define QMT_ERROR_PARAM_OUT_OF_RANGE (-35L)
/** A file header stands where the info header is expected. */
#define QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER (-36L)
/** A required parameter is missing, or an option string is not understood. */
#define QMT_ERROR_PARAM_IS_MISSING (-37L)
/** A bitmap file is corrupt. */
#define QMT_ERROR_CURRUPT_BYTECODE (-38L)
/** The content of a data block is corrupt or inconsistent. */
#define QMT_ERROR_CURRUPT_DATA (-39L)
/** A tag, version or hash of a data block is not the expected one. */
#define QMT_ERROR_UNEXPECTED_SIGNATURE (-40L)
/** The handle is null. */
#define QMT_ERROR_NO_HANDLE (-42L)
/** The handle is not one of CalibrateCreate(). */
#define QMT_ERROR_INVALID_HANDLE (-43L)
/** A bad named parameter or argument. */
#define QMT_ERROR_INVALID_PARAMETER (-44L)
/** The options exclude each other. */
#define QMT_ERROR_INVALID_OPTIONS_SETTING (-45L)
/** A parameter name was published twice. */
#define QMT_ERROR_PARAM_VALUE_DUPLICATE (-46L)
/** An internal error. */
#define QMT_ERROR_INTERNAL (-101L)
/** Out of memory. */
#define QMT_ERROR_OUT_OF_MEMORY (-102L)
/** An unknown failure; the process may be damaged. */
#define QMT_FATAL_ERROR_TERMINATION_NECESSARY (-104L)
/** A system call failed. */
#define QMT_ERROR_FROM_SYSTEM_FUNCTION (-105L)
/** A file could not be opened. */
#define QMT_ERROR_FILE_OPEN_FAIL (-200L)
/** A block or file ended early. */
#define QMT_ERROR_UNEXPECTED_EOF (-201L)
/** Writing failed. */
#define QMT_ERROR_WRITE_FAIL (-202L)
/** Another stream failure. */
#define QMT_ERROR_IO (-204L)
/** A file is no bitmap file. */
#define QMT_ERROR_BMP_NO_SIGNATURE (-210L)
/** No calibration can be derived from the capture, or solved from the data. */
#define QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE (-600L)
/** An image operator was handed a null or empty image. */
#define QMT_ERROR_BAD_POINTER (-701L)

#ifdef __cplusplus
extern "C" {
#endif

/* Handle and options. */

/**
 * Makes a handle with default options and without calibration data.
 *
 * @return the handle, which CalibrateDelete() releases, or null when there is no memory.
 *
 * When the C++ allocator of the process throws, its exception passes to the caller; nothing is
 * leaked. A C caller meets this only where the process replaces the allocator or runs out of
 * memory, which ends a C program.
 */
TESSARIN_CALIBRATE_API void* CalibrateCreate(void);

/**
 * Releases a handle and sets *handle to null.
 *
 * @param handle address of the variable that holds the handle
 * @return QMT_ERROR_TEMPLATE_PTRPTR   handle is null
 *         QMT_ERROR_NO_HANDLE         *handle is null, as after an earlier CalibrateDelete()
 *         QMT_ERROR_INVALID_HANDLE    *handle is not a handle
 *         QMT_SUCCESS
 */
TESSARIN_CALIBRATE_API long CalibrateDelete(void** handle);

/**
 * Sets one option from a text of the form key=value. Keys and values are compared without regard
 * to case and by their beginning: text behind a key or behind a value is tolerated, and blanks
 * behind the equals sign are skipped. Options may be set at any time; they act from the next call.
 *
 *   DynamicFingerMask   true | enable, false | disable;  default true. Even out the light, find
 *                       the finger and whiten the rest.
 *   SensitiveMode       true | enable, false | disable;  default false. Accept faint fingers.
 *   GeometricCalibrate  ThinPlateSpline | true | enable, oddLines | false | disable, off;
 *                       default ThinPlateSpline. How the geometry is corrected. oddLines keeps
 *                       every second line; off needs DynamicFingerMask=false.
 *   MaskIsOutput        true | enable, false | disable;  default false. Return the finger mask
 *                       (0 finger, 255 background) in place of the image; acts with
 *                       DynamicFingerMask only.
 *   PrecalculatedData   true | enable, false | disable;  default false. CalibrateSetData() leaves
 *                       the warp table to CalibrateSetPrecalculatedData().
 *
 * @param option null-terminated text
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_PARAM_IS_MISSING   option is null, has no known key, no equals sign or a value
 *                                      that is not listed; nothing changes
 *         QMT_SUCCESS
 */
TESSARIN_CALIBRATE_API long CalibrateSetOption(void* handle, const char* option);

/**
 * Reads one option as text: "Enabled" or "Disabled", for GeometricCalibrate "off", "oddLines" or
 * "ThinPlateSpline".
 *
 * @param key       one of the five keys, complete; case does not count
 * @param value     receives the text with its terminating zero; null asks for the size only
 * @param valueSize in: bytes at value; out: bytes needed, the terminating zero included. It is
 *                  left alone on every failure but QMT_ERROR_TEMPLATE_SIZE.
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_PARAM_IS_MISSING   key is null
 *         QMT_ERROR_TEMPLATE_SIZE_PTR  valueSize is null
 *         QMT_ERROR_PARAM_IS_MISSING   unknown key
 *         QMT_ERROR_TEMPLATE_SIZE      *valueSize was too small
 *         QMT_SUCCESS
 */
TESSARIN_CALIBRATE_API long CalibrateGetOption(void* handle, const char* key, char* value,
                                               unsigned long* valueSize);

/**
 * Reads the two levels that the last dynamic calibration on this handle left; 0.0 before the
 * first one.
 *
 * @param dirtLevel      receives the dirt level; may be null
 * @param dryFingerLevel receives the dry finger level; may be null
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE, QMT_SUCCESS
 */
TESSARIN_CALIBRATE_API long GetCalibrationWarningLevels(void* handle, double* dirtLevel,
                                                        double* dryFingerLevel);

/* Images. */

/**
 * Corrects one raw capture. The result is an 8-bit grey bitmap block, with the geometry that the
 * option GeometricCalibrate tells: the target frame of the calibration data (320 x 480 pixels at
 * 500 dots per inch as a rule) for ThinPlateSpline, the same width and half the lines for
 * oddLines, the capture unchanged for off.
 *
 * @param bitmap        bitmap block of the capture: 8 bits, one plane, not compressed; its size in
 *                      pixels is that of the calibration data with ThinPlateSpline and free in the
 *                      other modes
 * @param bitmapSize    bytes of the block; must be exactly what its header implies
 * @param outBitmap     receives the result; another block than bitmap; may be null with
 *                      *outBitmapSize 0
 * @param outBitmapSize in: bytes at outBitmap; out: bytes needed and, on success, used. Asking for
 *                      the size by 0 costs a full calibration.
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_BITMAP_PTR               bitmap is null or equals outBitmap
 *         QMT_ERROR_TEMPLATE_SIZE_PTR        outBitmapSize is null
 *         QMT_ERROR_BITMAP_PTR               outBitmap is null while *outBitmapSize is not 0
 *         QMT_ERROR_INVALID_OPTIONS_SETTING  DynamicFingerMask with GeometricCalibrate off
 *         QMT_ERROR_NOT_INITIALIZED          no calibration data
 *         QMT_ERROR_TEMPLATE_SIZE            the block is shorter than a header
 *         QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER  the block begins with a file header
 *         QMT_ERROR_BITMAP_HEADERSIZE        the header is not the one of 40 bytes
 *         QMT_ERROR_BITMAP_PLANE             the header does not name one plane
 *         QMT_ERROR_BITMAP_COMPRESSION       unknown compression
 *         QMT_ERROR_BITMAP_BITCOUNT          unknown depth
 *         QMT_ERROR_TEMPLATE_SIZE            bitmapSize differs from what the header implies
 *         QMT_ERROR_BITMAP_BITCOUNT          1, 4 or 16 bits
 *         QMT_ERROR_BITMAP_PLANE             compressed, or 24 or 32 bits
 *         QMT_ERROR_INTERNAL                 width or height below 1; a single line with oddLines
 *         QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE  ThinPlateSpline without a prepared table, as with
 *                                            PrecalculatedData, and the points allow no smooth
 *                                            mapping
 *         QMT_ERROR_NOT_INITIALIZED          ThinPlateSpline and a target with a side of 0
 *         QMT_ERROR_BITMAP_DIMENSION         ThinPlateSpline and not the size of the scanner
 *         QMT_ERROR_BITMAP_PELS, QMT_ERROR_INTERNAL  DynamicFingerMask, and the calibration data
 *                                            have no resolution at which a finger could be sought
 *         QMT_ERROR_TEMPLATE_SIZE            *outBitmapSize was too small; it holds the size needed
 *         QMT_ERROR_OUT_OF_MEMORY            at any point
 *         QMT_SUCCESS
 */
TESSARIN_CALIBRATE_API long Calibrate(void* handle, unsigned char* bitmap, unsigned long bitmapSize,
                                      unsigned char* outBitmap, unsigned long* outBitmapSize);

/**
 * Measures on a raw capture of the empty platen how contaminated the sensor is: everything but
 * the frame of the sensor that differs from its surroundings counts, whatever the light. The level
 * goes from 0.0, nothing found, to 100.0; each pixel that differs strongly adds 0.5, and weaker
 * differences add by their mean. Needs no calibration data and looks at no option.
 *
 * @param bitmap     bitmap block as for Calibrate(), of any size in pixels; a finger on it counts
 *                   as contamination
 * @param bitmapSize bytes of the block
 * @param result     receives the level; 101.0 on every failure but a null result
 * @return QMT_ERROR_TEMPLATE_SIZE_PTR  result is null
 *         QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_BITMAP_PTR         bitmap is null
 *         the statuses of a bitmap block, up to its size, as for Calibrate()
 *         QMT_ERROR_BITMAP_BITCOUNT    1, 4 or 16 bits
 *         QMT_ERROR_INTERNAL           24 or 32 bits; width or height below 1
 *         QMT_ERROR_OUT_OF_MEMORY      at any point
 *         QMT_SUCCESS                  also for a compressed block, in which nothing is found
 */
TESSARIN_CALIBRATE_API long ContaminationDetection(void* handle, unsigned char* bitmap,
                                                   unsigned long bitmapSize, double* result);

/**
 * Measures the geometric accuracy of a corrected image of the dot target: the percentage of all
 * 2775 distances between two dots that keep the limits which the EFTS sets for image quality at
 * 500 dots per inch, 0.35 pixels below a distance of 35 pixels and 1 percent from there on. What
 * is right is the target of the calibration data; where it lies in the image plays no part. Looks
 * at no option and changes nothing.
 *
 * @param bitmap     bitmap block of the corrected image: as Calibrate() gives it for a capture of
 *                   the target, with DynamicFingerMask=false
 * @param bitmapSize bytes of the block
 * @param result     receives the percentage, 0.0 to 100.0; left alone on failure
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_BITMAP_PTR         bitmap is null
 *         QMT_ERROR_TEMPLATE_PTR_NULL  result is null
 *         the statuses of a bitmap block, up to its size, as for Calibrate()
 *         QMT_ERROR_NOT_INITIALIZED    no calibration data
 *         the further statuses of a bitmap block
 *         QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE  nothing stands out in the image
 *         QMT_ERROR_CURRUPT_DATA       the target of the calibration data has no resolution
 *         QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE  the target was not found, not complete or too
 *                                                 crooked
 *         QMT_ERROR_OUT_OF_MEMORY      at any point
 *         QMT_SUCCESS
 */
TESSARIN_CALIBRATE_API long CalibrateCheckEfts(void* handle, unsigned char* bitmap,
                                               unsigned long bitmapSize, double* result);

/* Calibration data. */

/**
 * Loads a calibration block, as CalibrateGetData() gave it, and prepares the warp table unless the
 * option PrecalculatedData is set. Bytes behind the block are ignored.
 *
 * Sides of 0 pixels are not refused: with one in its capture a block loads and is no calibration
 * data, so that the handle answers QMT_ERROR_NOT_INITIALIZED afterwards; with one in its target it
 * serves the other modes than ThinPlateSpline.
 *
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_TEMPLATE_PTR          data is null; the data loaded before stays
 *         QMT_ERROR_UNEXPECTED_SIGNATURE  tags or version are not those of a calibration block
 *         QMT_ERROR_UNEXPECTED_EOF        the block ends early
 *         QMT_ERROR_CURRUPT_DATA          checksum, counts or points are wrong: the target points
 *                                         are not the pattern's within 10 pixels, or a step from
 *                                         dot to dot in the capture differs from the mean step by
 *                                         more than 30 percent
 *         QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE  the points allow no smooth mapping
 *         QMT_ERROR_OUT_OF_MEMORY
 *         QMT_SUCCESS
 * After every failure but the first three the handle holds no calibration data; what stays behind
 * QMT_FATAL_ERROR_TERMINATION_NECESSARY is not told.
 */
TESSARIN_CALIBRATE_API long CalibrateSetData(void* handle, unsigned char* data, unsigned long size);

/**
 * Gives the calibration block of the handle, a little more than 1 KiB, for the application to
 * keep with the scanner.
 *
 * @param data receives the block
 * @param size in: bytes at data; out: bytes needed and, on success, used
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_TEMPLATE_SIZE_PTR  size is null
 *         QMT_ERROR_NOT_INITIALIZED    no calibration data
 *         QMT_ERROR_TEMPLATE_SIZE      *size was too small; it holds the size needed
 *         QMT_ERROR_TEMPLATE_PTR       data is null; *size holds the size needed
 *         QMT_ERROR_OUT_OF_MEMORY      at any point
 *         QMT_SUCCESS
 */
TESSARIN_CALIBRATE_API long CalibrateGetData(void* handle, unsigned char* data,
                                             unsigned long* size);

/**
 * Loads a precalculated block, which saves preparing the warp table. Set the option
 * PrecalculatedData, load the calibration block, then this one: it belongs to one calibration
 * block and is refused with any other. It is bound to machines of the same byte order. What a
 * table can reach is checked, how it weighs is not: keep the block where nothing damages it.
 *
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_TEMPLATE_PTR          data is null
 *         QMT_ERROR_PARAM_IS_MISSING      no calibration data was ever loaded on the handle
 *         QMT_ERROR_UNEXPECTED_SIGNATURE  tags, version or hash differ, the handle holds no
 *                                         calibration data, or the block holds no table or ends
 *                                         early
 *         QMT_ERROR_CURRUPT_DATA          its content is inconsistent, a side is 0, or the table
 *                                         reaches out of the capture
 *         QMT_ERROR_OUT_OF_MEMORY
 *         QMT_SUCCESS
 * After every failure but the first three the handle holds no calibration data; what stays behind
 * QMT_FATAL_ERROR_TERMINATION_NECESSARY is not told.
 */
TESSARIN_CALIBRATE_API long CalibrateSetPrecalculatedData(void* handle, unsigned char* data,
                                                          unsigned long size);

/**
 * Gives the precalculated block that belongs to the calibration data of the handle, about
 * 5.3 MiB for a frame of 320 x 480 pixels. Where no table is prepared, as with PrecalculatedData
 * before the first Calibrate() and behind one that failed to prepare it, the block holds none, and
 * does not load. Arguments and statuses as for CalibrateGetData().
 */
TESSARIN_CALIBRATE_API long CalibrateGetPrecalculatedData(void* handle, unsigned char* data,
                                                          unsigned long* size);

/**
 * Gives the measured geometry of one target plate, the target points of a calibration block, to be
 * used by every later CalibrateGenerateData() of the handle in place of the ideal pattern. The
 * calibration data of the handle is dropped in any case. Whether the points are those of a target
 * is asked when they are used. After a failure the reference holds what was read of the block:
 * give another one before generating.
 *
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_TEMPLATE_PTR          data is null; nothing is dropped
 *         QMT_ERROR_UNEXPECTED_SIGNATURE, QMT_ERROR_UNEXPECTED_EOF, QMT_ERROR_CURRUPT_DATA,
 *         QMT_ERROR_OUT_OF_MEMORY         as for CalibrateSetData()
 *         QMT_SUCCESS
 */
TESSARIN_CALIBRATE_API long CalibrateSetReferenceData(void* handle, unsigned char* data,
                                                      unsigned long size);

/**
 * Derives the calibration data of a scanner from a capture of the dot target: dark dots on bright
 * ground, 7 columns of 10, 11, 11, 11, 11, 11 and 10 dots of 0.8 mm, 2 mm apart. The warp table is
 * prepared, too, whatever the option PrecalculatedData says. CalibrateGetData() and
 * CalibrateGetPrecalculatedData() then give the blocks to keep with the scanner.
 *
 * Finding the target is more tolerant than loading is: data from a capture with a dot about 0.6 mm
 * off, or on a reference stretched by some percent, may be generated and not load. A producer of
 * blocks should read a block back by CalibrateSetData() on a second handle before keeping it.
 *
 * @param bitmap     bitmap block of the capture: 8 bits, one plane, not compressed, about 493 x
 *                   1009 dots per inch whatever its header says. Its size in pixels becomes that
 *                   of all captures of the scanner.
 * @param bitmapSize bytes of the block; must be exactly what its header implies
 * @return QMT_ERROR_NO_HANDLE, QMT_ERROR_INVALID_HANDLE
 *         QMT_ERROR_BITMAP_PTR  bitmap is null; the data loaded before stays
 *         the statuses of a bitmap block, as for Calibrate()
 *         QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE  nothing stands out in the capture
 *         QMT_ERROR_CURRUPT_DATA  the reference of CalibrateSetReferenceData() is not that of a
 *                                 target
 *         QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE  the target was not found, not complete, too
 *                                                 crooked or not that of the reference; the log
 *                                                 has the words
 *         QMT_ERROR_OUT_OF_MEMORY  at any point
 *         QMT_SUCCESS
 * After every failure but the first three the handle holds no calibration data; what stays behind
 * QMT_FATAL_ERROR_TERMINATION_NECESSARY is not told.
 */
TESSARIN_CALIBRATE_API long CalibrateGenerateData(void* handle, unsigned char* bitmap,
                                                  unsigned long bitmapSize);

/* Words of the status numbers. */

/**
 * The description of a status number, in English; "Unknown error code." for a number that is
 * none. Needs no handle and cannot fail.
 *
 * @return a text with static lifetime
 */
TESSARIN_CALIBRATE_API const char* CalibrateGetErrorDescription(long code);

/** The same without a line in the log. */
TESSARIN_CALIBRATE_API const char* GetErrorDescriptionIntern(long code);

/** The same as wide text. */
TESSARIN_CALIBRATE_API const wchar_t* GetErrorDescriptionInternW(long code);

/* Logging. */

/*
 * Each of the six names that follow may be defined by the application as well, alone or with the
 * others; its definition takes the place of the library's. It is linked in front of the shared
 * library or preloaded, or is an object of a program that links the static library, be it the
 * parts that are needed or the whole.
 */

/**
 * Receives every line of the library's trace. The version in the library drops its arguments. A
 * replacement must not fail and may be called from every thread that calls the library. It must not
 * use the handle in whose call it is called, and asks for the words of a status by
 * GetErrorDescriptionIntern(): CalibrateGetErrorDescription() leaves a line itself.
 *
 * @param level  7 for the trace and for expected outcomes, 3 for failures
 * @param format as for printf, without a line end
 * @return ignored
 */
TESSARIN_CALIBRATE_API long VekLFLog(long level, const char* format, ...)
    TESSARIN_CALIBRATE_PRINTF(2, 3);

/** Returns 0. The library calls none of these three and reads neither of the two pointers. */
TESSARIN_CALIBRATE_API long VekLFCreate(void);
/** Does nothing. */
TESSARIN_CALIBRATE_API void LoadLoggingFacility(void);
/** Does nothing. */
TESSARIN_CALIBRATE_API void ReleaseLoggingFacility(void);
/** For a logging facility to use; null at load. */
TESSARIN_CALIBRATE_API extern void* g_VekLFCreate;
/** For a logging facility to use; null at load. */
TESSARIN_CALIBRATE_API extern void* g_VekLFLog;

/* Text conversion. */

/**
 * Converts wide text to UTF-8.
 *
 * @param source      wide text; null gives 0
 * @param sourceBytes its size in bytes (4 per character), without a terminating zero
 * @param target      receives the bytes, without a terminating zero; null to measure
 * @param targetBytes bytes at target; 0 to measure
 * @return bytes written or needed; -1 where the text does not convert or target is too small: then
 *         target may be written to in part. Measuring a text that does not convert throws a C++
 *         exception.
 */
TESSARIN_CALIBRATE_API long ConvertWideCharToSBCS(const wchar_t* source, unsigned long sourceBytes,
                                                  char* target, unsigned long targetBytes);

/** The inverse: UTF-8 to wide text. targetBytes counts bytes, the result counts characters. */
TESSARIN_CALIBRATE_API long ConvertSBCSToWidechar(const char* source, unsigned long sourceBytes,
                                                  wchar_t* target, unsigned long targetBytes);

/*
 * The library also exports CheckHandle, CheckBoolOption and CheckGeometricOption. They take C++
 * types of its own and are not meant for applications.
 */

#ifdef __cplusplus
}
#endif

#endif /* TESSARIN_CALIBRATE_SDK_H */
