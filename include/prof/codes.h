/** @file
 * The numbers of the profile store: result codes, formats of a save, options.
 */
#ifndef VXUT_PROF_CODES_H
#define VXUT_PROF_CODES_H

/** Result codes, and the error of a job's open. For the system's reason see prof/job.h. */
enum {
    PROF_OK = 0, /**< success */
    PROF_ERR_OPEN =
        -1, /**< a shared open failed, the name is reserved, or the clipboard contains no profile */
    PROF_ERR_SAVE = -3,      /**< an exclusive open or a save failed */
    PROF_ERR_WRITE = -4,     /**< an entry could not be written, or contents could not be decoded */
    PROF_ERR_JOB = -5,       /**< the job handle is null */
    PROF_ERR_NOT_FOUND = -6, /**< there is no such item, or its value is empty */
    PROF_ERR_FORMAT = -7,    /**< the file is damaged, or its form is not supported */
    PROF_ERR_MEMORY = -8,    /**< out of memory */
    PROF_ERR_VALUE = -9,     /**< the item's text is not a value of the type */
    PROF_ERR_BUSY = -10      /**< the file stayed in use, could not be read, or is shorter than 4 bytes */
};

/** The format of a save: one form, combined with flags. */
enum {
    PROF_FORMAT_TEXT = 0, /**< form: lines of text */
    PROF_FORMAT_XML = 1,  /**< form: an XML document. A lone CR or LF in a value is read back as CR LF, and
                               a list named "/" as part of the list around it */
    PROF_FORMAT_XFDF = 2, /**< form: field data of PDF forms, in the default code page and without escapes,
                               for other programs: such a file cannot be read back (PROF_ERR_FORMAT) */
    PROF_FORMAT_PACKED = 0x40, /**< flag: packed binary around the form. Only ProfSave() packs the profile;
                                    a stream receives a packed image without content. */
    PROF_FORMAT_KEEP_PACKED = 0x80 /**< flag: packed binary if the job was loaded from packed binary */
};

/** Options of ProfGetOption() and ProfSetOption(). */
enum {
    PROF_OPTION_CODE_PAGE = 1 /**< default code page of narrow functions and narrow files, 0 to 65535.
                                 Initially the system's ANSI code page, which 0 also selects. */
};

#endif
