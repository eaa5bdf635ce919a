/** @file
 * The numbers of the profile store: result codes, formats of a save, options.
 */
#ifndef VXUT_PROF_CODES_H
#define VXUT_PROF_CODES_H

/** Result codes, and the last error of a job. */
enum {
    PROF_OK = 0, /**< success */
    PROF_ERR_OPEN =
        -1, /**< the file could not be opened, its name is reserved, or the clipboard has no profile */
    PROF_ERR_SAVE = -3,      /**< an exclusive open or a save failed */
    PROF_ERR_WRITE = -4,     /**< an item could not be written, or contents could not be decoded */
    PROF_ERR_JOB = -5,       /**< null job handle */
    PROF_ERR_NOT_FOUND = -6, /**< no such item, or its value is empty */
    PROF_ERR_FORMAT = -7,    /**< the file is damaged or of a form that is not supported */
    PROF_ERR_MEMORY = -8,    /**< memory ran out */
    PROF_ERR_VALUE = -9,     /**< the item's text is no value of the type */
    PROF_ERR_BUSY = -10      /**< the file stayed in use, or ended before its contents could be recognised */
};

/** The format of a save: one form, and flags. */
enum {
    PROF_FORMAT_TEXT = 0,          /**< lines of text */
    PROF_FORMAT_XML = 1,           /**< an XML document */
    PROF_FORMAT_XFDF = 2,          /**< field data of PDF forms */
    PROF_FORMAT_PACKED = 0x40,     /**< flag: packed binary around the form */
    PROF_FORMAT_KEEP_PACKED = 0x80 /**< flag: the same if the job was loaded from packed binary */
};

/** Options of ProfGetOption() and ProfSetOption(). */
enum {
    PROF_OPTION_CODE_PAGE = 1 /**< code page of narrow functions and of narrow files; at load the system's */
};

#endif
