#ifndef BRINDLEWORT_BRINDLEWORT_H
#define BRINDLEWORT_BRINDLEWORT_H

/* Brindlewort: a technical-analysis script engine. The C face: a stable ABI that any language can load.
 *
 * Every function returns a status: 0 success, 1 failure, -1 a null handle (or a null pointer where a result
 * must be written). Results come through trailing out-pointers: booleans as 0 for false and a non-zero
 * number for true, texts as UTF-8 that the caller frees with bw_free. A text result is null when the call
 * returns nothing. A null text argument reads as "". No function throws, and none keeps a pointer that the
 * caller gave, save for callbacks. One handle is used by one thread at a time, but that bw_<class>_cancel may be called
 * from any thread.
 *
 * The lines of a script end with CR LF. A line feed alone ends none: the lines around it are read as one, and what is
 * told of them is a name with a line feed in it ("Error: Undefined variable 'CLOSE\nA'"). Replace it before the call.
 *
 * What a host does elsewhere:
 * - Threads: different handles may be used by different threads at once, and a handle may go from thread to thread.
 * - Stack: a thread of 64 KiB is enough, and so is a fiber of 128 KiB; a call uses less than 96 KiB of a stack that is
 *   not the thread's own. There a script that nests a few dozen calls ends with "Error: Script too complex."; 1,000
 *   evaluations inside one another take a stack of 4 MiB. A fiber's stack may not be a part of its thread's.
 * - Floating point: the host's rounding, traps, flush-to-zero and denormals-are-zero change no result. Every call
 *   computes in an environment of the library's, and leaves the host's as it was, flags included. Callbacks run in the
 *   host's own; what one changes there stays.
 * - Locale: changes no result, be it of the C library or of C++.
 * - Time zone: DATEPART and DATEDIFF alone depend on it. They count in the zone that the process has at the time of
 *   the call (on POSIX systems that of the last tzset); rows that are computed stay when it changes, and a new run of a
 *   script over all bars, or a new handle, takes the present one throughout.
 *
 * When memory runs out the status is 1, and the call has changed nothing: no bar is added or edited, no script set or
 * prepared, also where it was the evaluation behind a change that lacked memory, and made again, the call gives what it
 * would have given at once. Results are not written, save that a text is null. Runs tell it by the error event too
 * ("Error: Out of memory."), where memory is left to do so, and leave no last run behind: get_series knows no name,
 * get_script_help gives "". A single call takes less than 4 GB beside the bars; a script that asks for more ends with
 * "Error: Script too complex.".
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
/* Ends the call of this handle that runs on another thread. The call tells "Error: The script was cancelled." as it tells
 * any error of a script, and gives what a failed run gives; the handle can be used as after any failed run. When no call
 * runs nothing happens, so one that begins later is not touched. Not to be called beside destroy. Always 0, or -1. A run
 * also ends by itself, with "Error: The script timed out. Please shorten your script and try again.", after five
 * minutes. */
BW_API int32_t bw_script_output_cancel(bw_script_output* h);

/* Adds a bar at the end. Bars are neither sorted nor checked; row order is time order. */
BW_API int32_t bw_script_output_append_record(bw_script_output* h, double jdate, double open_price,
                                              double high_price, double low_price, double close_price,
                                              int32_t volume);
/* The same for `count` rows of six doubles: JDate, Open, High, Low, Close, Volume. A volume is cut to a 32-bit integer;
 * when one of them is beyond those, or not a number, the status is 1 and no bar of the block is added. */
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
/* ---- The incremental way: the handle keeps an engine alive. Set it up once, prepare a script once, give it bars one
 * by one, and each run brings every series up to date where it stopped, so a new bar costs one new row. */

/* Sets the engine up, before its first bar, for so many variables of scripts and functions (250 when below 10). A
 * script that needs more ends with "Error: Script too complex.". */
BW_API int32_t bw_script_output_initialise_transient_store(bw_script_output* h, int32_t variables_size);
/* Prepares a script for the runs that follow. `result`: 1, or 0 when it is empty or too large. */
BW_API int32_t bw_script_output_process_scrip_data(bw_script_output* h, const char* script, int32_t* result);
/* 101 (as it begins): a further preparation adds its SET statements to those before. 102: it drops the script before,
 * and outputs have no dates. */
BW_API int32_t bw_script_output_set_data_retrieve_mode(bw_script_output* h, int32_t mode);
/* Adds a series that the host feeds, with room for `size` rows; a size of -987654321 removes it. A name in a script
 * stands in capitals. */
BW_API int32_t bw_script_output_add_or_remove_basic_vector_series(bw_script_output* h, const char* name,
                                                                  int32_t size);
/* Feeds such a series: `add_or_update` 11 adds a row, 22 changes the last one. Every bar adds a row without a value to
 * it, so 22 is the usual number. The null value -987654321.0 repeats the value before. */
BW_API int32_t bw_script_output_update_basic_vector_data(bw_script_output* h, const char* name, double value,
                                                         uint8_t add_or_update);
/* Accepted; writes nothing. */
BW_API int32_t bw_script_output_get_variable_values_log(bw_script_output* h, const char* path);
/* Adds a bar, and a row to every series. */
BW_API int32_t bw_script_output_append_record_new(bw_script_output* h, double jdate, double open_price,
                                                  double high_price, double low_price, double close_price,
                                                  int32_t volume);
/* Replaces the first bar of exactly this date; the last row of every series takes its prices, whichever bar it is.
 * `result`: -1, or 0 when there is no such bar. Status 1 and `result` 0, with the bar replaced, when a series of the host
 * has no row yet. */
BW_API int32_t bw_script_output_edit_record_new(bw_script_output* h, double jdate, double open_price,
                                                double high_price, double low_price, double close_price,
                                                int32_t volume, int32_t* result);
/* Changes the date of the first bar dated `old_jdate`. `result`: -1, or 0 when there is none. */
BW_API int32_t bw_script_output_edit_jdate_new(bw_script_output* h, double old_jdate, double new_jdate,
                                               int32_t* result);
/* Runs the prepared script and gives its series as bw_script_output_get_script_output does; row i belongs to bar i.
 * `script` only tells whether there is one, whether it asks for candlestick patterns, and how many rows the event
 * list leaves out. */
BW_API int32_t bw_script_output_get_script_output_new(bw_script_output* h, const char* script,
                                                      int32_t map_count, const char* output_sets, char** text);
BW_API int32_t bw_script_output_get_custom_ind_from_condition_new(bw_script_output* h, const char* script,
                                                                  char** text);

/* Live series, in the order of the output names. The list and all rows that it has ever shown stay readable until the
 * next run or pointer call of the handle, or its end; they are never freed by the host. Bars that are added meanwhile
 * show in the list (its items are brought up to date), not in values that the host has copied out of it. */
typedef struct bw_series {
  const double* values;
  size_t count;
} bw_series;
typedef struct bw_series_list {
  size_t count;
  const bw_series* items;
} bw_series_list;

/* Runs the prepared script. `data_ptr`: the address of a bw_series_list, or -1, with status 1, when the run fails (no
 * event tells it). `map_count` has no effect. */
BW_API int32_t bw_script_output_get_script_output_ptr(bw_script_output* h, const char* script,
                                                      int32_t map_count, const char* output_sets,
                                                      intptr_t* data_ptr);

/* A view of a series of the last run, valid until the handle's next call. `name` as a column shows it or as
 * the script writes it. Status 1 for an unknown name. Row i belongs to bar i + 1 of the run's bars, or to bar i on the
 * incremental way. */
BW_API int32_t bw_script_output_get_series(bw_script_output* h, const char* name, const double** values,
                                           size_t* count);

/* The manual page of the function that the last run called last, the one that a failing script stopped in; "" when
 * there is none. */
BW_API int32_t bw_script_output_get_script_help(bw_script_output* h, char** text);

/* ---- Backtest: what trading on the signals of scripts would have brought ------------------------------ */

typedef struct bw_backtest bw_backtest;

/* Null when memory runs out. */
BW_API bw_backtest* bw_backtest_create(void);
BW_API void bw_backtest_destroy(bw_backtest* h);
/* The event of a failed backtest, one without trades included. */
BW_API int32_t bw_backtest_on_script_error(bw_backtest* h, bw_script_error_fn fn, void* user);
/* Ends the call of this handle that runs on another thread; see bw_script_output_cancel. */
BW_API int32_t bw_backtest_cancel(bw_backtest* h);
/* From now on the random numbers behind the Monte Carlo figure begin with this seed, not with the clock. */
BW_API int32_t bw_backtest_set_random_seed(bw_backtest* h, int64_t seed);

BW_API int32_t bw_backtest_append_record(bw_backtest* h, double jdate, double open_price, double high_price,
                                         double low_price, double close_price, int32_t volume);
/* The same for `count` rows of six doubles: JDate, Open, High, Low, Close, Volume. A volume is cut to a 32-bit integer;
 * when one of them is beyond those, or not a number, the status is 1 and no bar of the block is added. */
BW_API int32_t bw_backtest_append_records(bw_backtest* h, const double* rows, size_t count);
/* Replaces the first bar of exactly this date. `result`: -1, or 0 when there is none. */
BW_API int32_t bw_backtest_edit_record(bw_backtest* h, double jdate, double open_price, double high_price,
                                       double low_price, double close_price, int32_t volume, int32_t* result);
/* `result`: -1 when found, else 0 and nothing is written. Null out-pointers before it are skipped. */
BW_API int32_t bw_backtest_get_record_by_jdate(bw_backtest* h, double jdate, double* open_price, double* high_price,
                                              double* low_price, double* close_price, int32_t* volume,
                                              int32_t* result);
/* `index` counts from 1. */
BW_API int32_t bw_backtest_get_record_by_index(bw_backtest* h, int32_t index, double* jdate, double* open_price,
                                              double* high_price, double* low_price, double* close_price,
                                              int32_t* volume, int32_t* result);
BW_API int32_t bw_backtest_clear_records(bw_backtest* h);
BW_API int32_t bw_backtest_get_record_count(bw_backtest* h, int32_t* count);
/* Of all handles this one alone counts milliseconds. */
BW_API int32_t bw_backtest_to_julian_date(bw_backtest* h, int32_t year, int32_t month, int32_t day, int32_t hour,
                                         int32_t minute, int32_t second, int32_t millisecond, double* jdate);
BW_API int32_t bw_backtest_from_julian_date(bw_backtest* h, double jdate, char** text);
/* The manual page of the function that the last run called last, the one that a failing script stopped in; "" when
 * there is none. */
BW_API int32_t bw_backtest_get_script_help(bw_backtest* h, char** text);

/* Runs the scripts over all bars, trades on what they say, and reports. An empty script is none; an exit script that is
 * the entry script of the other side is not run again. `max_open_days`: "name=value;" four times, for the stop loss in
 * percent, the trailing stop (above 0: on), the profit target in percent, and the bars until a position is closed in
 * any case; 0 switches a rule off. `text` is null for an error, which the event tells, and "" without bars. */
BW_API int32_t bw_backtest_backtest(bw_backtest* h, const char* buy_script, const char* sell_script,
                                    const char* exit_long_script, const char* exit_short_script, double slip_pct,
                                    const char* max_open_days, char** text);
/* The same with the scripts run on the incremental way, whose functions differ in their first rows. */
BW_API int32_t bw_backtest_backtest_new(bw_backtest* h, const char* buy_script, const char* sell_script,
                                        const char* exit_long_script, const char* exit_short_script,
                                        double slip_pct, const char* max_open_days, char** text);

/* ---- Alert: a script that watches one symbol ----------------------------------------------------------
 *
 * Two ways of watching:
 *   plain: on_alert and on_script_error, set_symbol, set_alert_name, set_alert_script, then append_record for each bar;
 *   incremental: the same events and names, then initialise_transient_store, process_scrip_data with the script,
 *     set_alert_script with it too, then append_record_opt for each bar.
 * Nothing is evaluated before set_alert_script (or evaluate) has given a script of at least 5 characters: without
 * it the calls that add bars succeed and no event comes. Nor does one come while there are too few bars for the
 * script.
 */

typedef struct bw_alert bw_alert;

/* Called on the caller's thread, within the call that caused them. The texts live until the callback returns. */
typedef void (*bw_alert_fn)(void* user, const char* symbol, const char* alert_name, double last_trade_date,
                            double last_trade_price);
typedef void (*bw_alert_error_fn)(void* user, const char* symbol, const char* alert_name, const char* description);

/* Null when memory runs out. Components are counted over all processes of the machine (of the user, but on
 * Windows): 999 may live beside the first. One that is created beyond those still takes bars and scripts, but where
 * it would evaluate its alert script it tells "Error: You have exceeded the maximum number of alerts!" by the error
 * event instead, at each bar again, for its whole life. bw_alert_evaluate and the incremental way are not held back:
 * there the event comes once at the setting up and once at each preparation. */
BW_API bw_alert* bw_alert_create(void);
BW_API void bw_alert_destroy(bw_alert* h);
/* The event of a script that fired: its last value is not 0. A null function removes the present one. */
BW_API int32_t bw_alert_on_alert(bw_alert* h, bw_alert_fn fn, void* user);
/* The event of a script that failed, or of a component beyond the limit. */
BW_API int32_t bw_alert_on_script_error(bw_alert* h, bw_alert_error_fn fn, void* user);
/* Ends the call of this handle that runs on another thread; see bw_script_output_cancel. */
BW_API int32_t bw_alert_cancel(bw_alert* h);

/* Adds a bar, with the date of its last trade, and evaluates the alert script over all bars. */
BW_API int32_t bw_alert_append_record(bw_alert* h, double jdate, double open_price, double high_price,
                                      double low_price, double close_price, int32_t volume,
                                      double last_trade_date);
/* The same for `count` rows of seven doubles (the last trade date is the seventh), evaluated once, after the last. When
 * a volume is beyond 32-bit integers, or not a number, the status is 1, no bar of the block is added, and nothing is
 * evaluated. */
BW_API int32_t bw_alert_append_records(bw_alert* h, const double* rows, size_t count);
/* Replaces the first bar of exactly this date and evaluates. `result`: -1, or 0 when there is none. */
BW_API int32_t bw_alert_edit_record(bw_alert* h, double jdate, double open_price, double high_price,
                                    double low_price, double close_price, int32_t volume, double last_trade_date,
                                    int32_t* result);
/* `result`: -1 when found, else 0 and nothing is written. Null out-pointers before it are skipped. */
BW_API int32_t bw_alert_get_record_by_jdate(bw_alert* h, double jdate, double* open_price, double* high_price,
                                              double* low_price, double* close_price, int32_t* volume,
                                              int32_t* result);
/* `index` counts from 1. */
BW_API int32_t bw_alert_get_record_by_index(bw_alert* h, int32_t index, double* jdate, double* open_price,
                                              double* high_price, double* low_price, double* close_price,
                                              int32_t* volume, int32_t* result);
BW_API int32_t bw_alert_clear_records(bw_alert* h);
BW_API int32_t bw_alert_get_record_count(bw_alert* h, int32_t* count);
BW_API int32_t bw_alert_to_julian_date(bw_alert* h, int32_t year, int32_t month, int32_t day, int32_t hour,
                                         int32_t minute, int32_t second, int32_t millisecond, double* jdate);
BW_API int32_t bw_alert_from_julian_date(bw_alert* h, double jdate, char** text);
/* The manual page of the function that the last run called last, the one that a failing script stopped in; "" when
 * there is none. */
BW_API int32_t bw_alert_get_script_help(bw_alert* h, char** text);
/* The date of the `index`-th bar, from 1; 0.0 outside. */
BW_API int32_t bw_alert_get_jdate(bw_alert* h, int32_t index, double* jdate);
/* Changes the date of the first bar dated `old_jdate`. `result`: -1, or 0 when there is none. */
BW_API int32_t bw_alert_edit_jdate(bw_alert* h, double old_jdate, double new_jdate, int32_t* result);

/* Symbol and name are the host's own, and go into every event. A script that is set is evaluated at once, and from
 * then on whenever a bar comes or changes; one of fewer than 5 characters is kept and never evaluated. On the
 * incremental way what runs is the prepared script, and the alert script only switches it on. */
BW_API int32_t bw_alert_get_symbol(bw_alert* h, char** text);
BW_API int32_t bw_alert_set_symbol(bw_alert* h, const char* text);
BW_API int32_t bw_alert_get_alert_name(bw_alert* h, char** text);
BW_API int32_t bw_alert_set_alert_name(bw_alert* h, const char* text);
BW_API int32_t bw_alert_get_alert_script(bw_alert* h, char** text);
BW_API int32_t bw_alert_set_alert_script(bw_alert* h, const char* text);

/* Evaluates a script once, which stays in force for later changes. `result`: 1 when it fired, else 0. */
BW_API int32_t bw_alert_evaluate(bw_alert* h, const char* script, int32_t* result);

/* ---- The incremental way: as on bw_script_output, a new bar costs one new row, not the history. */

/* Sets the engine up, before its first bar, for so many variables of scripts and functions (250 when below 10). From
 * then on set_alert_script evaluates on this way. */
BW_API int32_t bw_alert_initialise_transient_store(bw_alert* h, int32_t variables_size);
/* Prepares the script of the runs that follow. They begin when set_alert_script has been called as well. `result`:
 * 1, or 0, with status 1, when the script is refused (when memory runs out, `result` is not written). */
BW_API int32_t bw_alert_process_scrip_data(bw_alert* h, const char* script, int32_t* result);
/* Adds a bar to the bars of both ways and evaluates the prepared script, once there is an alert script. A script that
 * fails is told by the event alone. Status 1 when memory runs out, in the evaluation too: the bar is not added then. */
BW_API int32_t bw_alert_append_record_opt(bw_alert* h, double jdate, double open_price, double high_price,
                                          double low_price, double close_price, int32_t volume,
                                          double last_trade_date);
/* Replaces the first bar of exactly this date in both, and evaluates. `result`: -1, or 0 when there is none. Status 1 and
 * `result` 0, with the bar replaced and without an evaluation, when the series have no row yet. */
BW_API int32_t bw_alert_edit_record_opt(bw_alert* h, double jdate, double open_price, double high_price,
                                        double low_price, double close_price, int32_t volume,
                                        double last_trade_date, int32_t* result);
/* Accepted; writes nothing. */
BW_API int32_t bw_alert_get_variable_values_log(bw_alert* h, const char* path);

/* ---- Validate: what is wrong with a script -------------------------------------------------------------- */

typedef struct bw_validate bw_validate;

/* Null when memory runs out. */
BW_API bw_validate* bw_validate_create(void);
BW_API void bw_validate_destroy(bw_validate* h);
/* The first fault, in words for an editor. For a script without fault: "" when `build_version` is -1, else "NO Error:"
 * and the number of series that it makes. */
BW_API int32_t bw_validate_validate(bw_validate* h, const char* script, int32_t build_version, char** text);
/* What the last validated script sets under a name: "EXCHANGE", "SECTOR", "INDUSTRY" or "SYMBOL". */
BW_API int32_t bw_validate_get_constant(bw_validate* h, const char* name, char** text);
/* The manual page of the function that the validation stopped in; "" when there is none. */
BW_API int32_t bw_validate_get_script_help(bw_validate* h, char** text);

#ifdef __cplusplus
}
#endif

#endif
