#ifndef BRINDLEWORT_BRINDLEWORT_H
#define BRINDLEWORT_BRINDLEWORT_H

/* Brindlewort: a technical-analysis script engine. The C face: a stable ABI that any language can load.
 *
 * Every function returns a status: 0 success, 1 failure, -1 a null handle (or a null pointer where a result
 * must be written). Results come through trailing out-pointers: booleans as 0 for false and a non-zero
 * number for true, texts as UTF-8 that the caller frees with bw_free. A text result is null when the call
 * returns nothing. A null text argument reads as "". No function throws, and none keeps a pointer that the
 * caller gave, save for callbacks. One handle is used by one thread at a time.
 */

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define BW_API __declspec(dllexport)
#elif defined(__GNUC__)
#define BW_API __attribute__((visibility("default")))
#else
#define BW_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version of the library, "major.minor.patch". Never null, never freed. */
BW_API const char* bw_version(void);
/* Frees a text that a call gave out. Null is allowed. */
BW_API void bw_free(void* text);

/* ---- ScriptOutput: the series that a script computes ------------------------------------------------ */

typedef struct bw_script_output bw_script_output;

/* Called on the caller's thread, within the failing call. `description` lives until the callback returns. */
typedef void (*bw_script_error_fn)(void* user, const char* description);

/* Null when memory runs out. */
BW_API bw_script_output* bw_script_output_create(void);
/* Null is allowed. */
BW_API void bw_script_output_destroy(bw_script_output* h);
/* The event of a failed script. A null function removes the present one. */
BW_API int32_t bw_script_output_on_script_error(bw_script_output* h, bw_script_error_fn fn, void* user);

/* Adds a bar at the end. Bars are neither sorted nor checked; row order is time order. */
BW_API int32_t bw_script_output_append_record(bw_script_output* h, double jdate, double open_price,
                                              double high_price, double low_price, double close_price,
                                              int32_t volume);
/* The same for `count` rows of six doubles: JDate, Open, High, Low, Close, Volume (cut to 32-bit integer). */
BW_API int32_t bw_script_output_append_records(bw_script_output* h, const double* rows, size_t count);
/* Replaces the first bar of exactly this date. `result`: -1, or 0 when there is none. */
BW_API int32_t bw_script_output_edit_record(bw_script_output* h, double jdate, double open_price,
                                            double high_price, double low_price, double close_price,
                                            int32_t volume, int32_t* result);
/* Record queries of this component look at the bars of the incremental way, not at those of
 * append_record. All out-pointers must be given. `result`: -1 when found, else 0 and nothing is written. */
BW_API int32_t bw_script_output_get_record_by_jdate(bw_script_output* h, double jdate, double* open_price,
                                                    double* high_price, double* low_price, double* close_price,
                                                    int32_t* volume, int32_t* result);
/* `index` counts from 1. */
BW_API int32_t bw_script_output_get_record_by_index(bw_script_output* h, int32_t index, double* jdate,
                                                    double* open_price, double* high_price, double* low_price,
                                                    double* close_price, int32_t* volume, int32_t* result);
/* Removes all bars, of both ways, and the prepared script. */
BW_API int32_t bw_script_output_clear_records(bw_script_output* h);
/* How many bars the incremental way has. */
BW_API int32_t bw_script_output_get_record_count(bw_script_output* h, int32_t* count);
/* The date of the bar after the `index`-th one (1 gives the second bar's date), 0.0 outside. */
BW_API int32_t bw_script_output_get_jdate(bw_script_output* h, int32_t index, double* jdate);
/* The number, from 0, of the last bar earlier than `jdate`; not written when the first is not earlier. */
BW_API int32_t bw_script_output_get_record_number_by_jdate(bw_script_output* h, double jdate, int32_t* number);
/* Changes the date of the first bar dated `old_jdate`. `result`: -1, or 0 when there is none. */
BW_API int32_t bw_script_output_edit_jdate(bw_script_output* h, double old_jdate, double new_jdate,
                                           int32_t* result);

/* Julian day number with fraction of a civil date and time; the millisecond is ignored. 1801 to 2099. */
BW_API int32_t bw_script_output_to_julian_date(bw_script_output* h, int32_t year, int32_t month, int32_t day,
                                               int32_t hour, int32_t minute, int32_t second,
                                               int32_t millisecond, double* jdate);
/* "YYYY-MM-DD HH:MM:SS", or "No Date Time". */
BW_API int32_t bw_script_output_from_julian_date(bw_script_output* h, double jdate, char** text);

/* The series of a script as text, a line a bar, over the bars of append_record.
 * `map_count`: the first bar to report, from 1; 0 reports all bars; -1 gives the list of the bars where
 * the script's last expression is 1. `output_sets`: the wanted columns, comma-separated; "" for all.
 * `text` is null when there is no answer: too few bars, or an error, which the event tells. */
BW_API int32_t bw_script_output_get_script_output(bw_script_output* h, const char* script, int32_t map_count,
                                                  const char* output_sets, char** text);
/* The column names that a script would give, as a heading line. */
BW_API int32_t bw_script_output_get_custom_ind_from_condition(bw_script_output* h, const char* script,
                                                              char** text);
/* A view of a series of the last run, valid until the handle's next call. `name` as a column shows it or as
 * the script writes it. Status 1 for an unknown name. Row i belongs to bar i + 1 of the run's bars. */
BW_API int32_t bw_script_output_get_series(bw_script_output* h, const char* name, const double** values,
                                           size_t* count);

#ifdef __cplusplus
}
#endif

#endif
