/** @file
 * The document formats that the library recognises by their bytes or their extension, in one table: the
 * library reads by it, and programs may list it.
 */
#ifndef VXUT_UTIL_DOCINFO_FORMATS_H
#define VXUT_UTIL_DOCINFO_FORMATS_H

/** Expands ROW for each format, in the order in which extensions are compared:
 *
 *  ROW(reader, extensions, magic, mask, name, properties, limits)
 *
 *  - reader: the part of the library that reads it.
 *  - extensions: each with its dot, separated by blanks; L"" if there is none.
 *  - magic, mask: the first four bytes as a little-endian number and the bits of it that count. The mask is 0
 * if the format is not recognised by its bytes.
 *  - name, properties, limits: for readers of the list.
 */
#define UTIL_DOCINFO_FORMATS(ROW)                                                                            \
    ROW(TiffImage, L".tif", 0x002A4949u, 0xFFFFFFFFu, L"TIFF", L"title, subject, author, comments, created", \
        L"big-endian files under .tif only; Exif data in JPEG files only")                                   \
    ROW(JpegImage, L".jpg .jpeg", 0x0000D8FFu, 0x0000FFFFu, L"JPEG with Exif",                               \
        L"title, subject, author, comments, created", L"the first APP1 block must be Exif")                  \
    ROW(Pdf, L".pdf", 0x46445025u, 0xFFFFFFFFu, L"PDF",                                                      \
        L"title, subject, author, keywords, created, modified",                                              \
        L"classic cross-reference tables of 64 KiB a section; no object streams, no decryption")             \
    ROW(Html, L".htm .html .mht", 0u, 0u, L"HTML and MHTML",                                                 \
        L"title, subject, author, last author, keywords, comments, created, modified",                       \
        L"a <head> that ends in the first 64 KiB")                                                           \
    ROW(XmlProperties, L".xml", 0u, 0u, L"XML with core properties or an Office block",                      \
        L"title, subject, author, last author, keywords, comments, created, modified",                       \
        L"an Office block must be in the first 64 KiB")                                                      \
    ROW(Rtf, L".rtf", 0u, 0u, L"RTF", L"title, subject, author, keywords, comments, created, modified",      \
        L"an \\info group that ends in the first 64 KiB")                                                    \
    ROW(Mail, L".eml .msg", 0u, 0u, L"Internet mail",                                                        \
        L"title (subject), author (from), last author (to), created (date)",                                 \
        L"a header that ends in the first 64 KiB")                                                           \
    ROW(ZipPackage, L"", 0x04034B50u, 0xFFFFFFFFu, L"OpenDocument and Office Open XML",                      \
        L"title, subject, author, last author, keywords, comments, created, modified",                       \
        L"no comment behind the ZIP archive, names of at most 255 bytes")                                    \
    ROW(WinWord2, L"", 0x002DA5DBu, 0xFFFFFFFFu, L"Word for Windows 2",                                      \
        L"title, subject, author, last author, keywords, comments", L"")                                     \
    ROW(WordPerfect, L"", 0x435057FFu, 0xFFFFFFFFu, L"WordPerfect 6 and later",                              \
        L"title, subject, author, last author, keywords, comments", L"not encrypted")

/** The same for compound documents, which are recognised by their first eight bytes, before the formats
 * above:
 *
 *  ROW(reader, extension, name, properties, limits)
 *
 *  A row without an extension is for all others. */
#define UTIL_DOCINFO_STORAGES(ROW)                                                                          \
    ROW(MessageStorage, L".msg", L"Saved mail message",                                                     \
        L"title (subject), author (sender), last author (recipients), created (sent), modified (received)", \
        L"")                                                                                                \
    ROW(CompoundProperties, L"", L"Compound document",                                                      \
        L"title, subject, author, last author, keywords, comments, created, modified",                      \
        L"the summary information set")

#endif
