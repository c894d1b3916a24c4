/* A list of texts in one piece of memory, in UTF-8 or UTF-16: how the functions of vo_table_reader_utf.h
 * hand texts to a caller whose language is not C.
 *
 *     vo_text_list* list = vo_text_list_create();
 *     vo_table_reader_column_u8(reader, 0, list);
 *     for (i = 0; i < vo_text_list_count(list); ++i)
 *       puts(vo_text_list_data_u8(list) + vo_text_list_offsets(list)[i]);
 *     vo_text_list_close(list);
 *
 * Shape: the texts stand one behind the other, a NUL behind each. Text i begins at offsets[i] and, its NUL
 * left out, has offsets[i + 1] - offsets[i] - 1 units; there are count + 1 offsets, from 0 to the number of
 * all units. Units are bytes of UTF-8 or 16-bit units of UTF-16, as the function that filled the list is
 * named. A text may hold a NUL itself where its table does: then its length counts, not the first NUL.
 *
 *     data     W - 1 0 9 8 0 0 0        the texts "W-1", "980" and ""
 *     offsets  0       4       8 9
 *
 * Text: UTF-8 is always valid and UTF-16 holds what the table holds. A lone surrogate, which an UTF-16 file
 * name or value may have, is U+FFFD in UTF-8 and stays itself in UTF-16.
 *
 * Ownership: a list belongs to who made it. Its memory is its own, so it outlives the reader that filled it;
 * it is valid until the list is filled again or closed. Every filling replaces what was there, and a failed
 * one leaves the list empty. Lists may be used again and again, which saves their memory being made anew.
 * Handles: every function accepts a null list and then answers 0 or null.
 * Threads: one list belongs to one thread at a time. No exception leaves any of these functions. */
#ifndef VOK_TABLE_RW_CAPI_VO_TEXT_LIST_H
#define VOK_TABLE_RW_CAPI_VO_TEXT_LIST_H

#include <stdint.h>

#include "platform/vok_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Texts one behind the other, with their offsets. */
typedef struct vo_text_list vo_text_list;

/* An empty list, to be freed with vo_text_list_close; null when memory is short. */
VOK_API vo_text_list* vo_text_list_create(void);

/* Frees the list; null is ignored. */
VOK_API void vo_text_list_close(vo_text_list* list);

/* Number of texts. */
VOK_API uint64_t vo_text_list_count(const vo_text_list* list);

/* The count + 1 offsets, in units; null for a null list alone. */
VOK_API const uint64_t* vo_text_list_offsets(const vo_text_list* list);

/* The bytes of all texts. Null when the list was last filled with UTF-16, so that nobody reads one as the
 * other; a new list answers a lone NUL. */
VOK_API const char* vo_text_list_data_u8(const vo_text_list* list);

/* The UTF-16 units of all texts. Null when the list was last filled with UTF-8; a new list answers a lone
 * NUL. */
VOK_API const uint16_t* vo_text_list_data_u16(const vo_text_list* list);

#ifdef __cplusplus
}
#endif

#endif
