/* A host in C that watches one symbol: bars in as they come, an event for each on which the script fires. The calls
 * are those of the incremental way, in their order; the plain way has no preparation and takes append_record.
 *
 *   gcc -Iinclude examples/watch.c -Lbuild/release/lib -lbrindlewort -Wl,-rpath,build/release/lib
 */
#include <brindlewort/brindlewort.h>
#include <stdio.h>

static const char script[] = "CROSSOVER(CLOSE, SMA(CLOSE, 3)) = TRUE";

static void on_alert(void* user, const char* symbol, const char* alert_name, double date, double price) {
  ++*(int*)user;
  printf("%s %s %.1f %.2f\n", symbol, alert_name, date, price);
}

static void on_script_error(void* user, const char* symbol, const char* alert_name, const char* description) {
  (void)user;
  fprintf(stderr, "%s %s %s\n", symbol, alert_name, description);
}

int main(void) {
  /* Falls for twelve days, then rises: on the thirteenth the close crosses its average. */
  static const double closes[] = {21, 20, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10, 13, 14, 15};
  bw_alert* alert = bw_alert_create();
  int32_t prepared = 0;
  int fired = 0, day;
  if (!alert) return 1;
  bw_alert_on_alert(alert, on_alert, &fired);
  bw_alert_on_script_error(alert, on_script_error, NULL);
  bw_alert_set_symbol(alert, "XYZ");
  bw_alert_set_alert_name(alert, "turn");

  bw_alert_initialise_transient_store(alert, 250);
  bw_alert_process_scrip_data(alert, script, &prepared);
  bw_alert_set_alert_script(alert, script);
  for (day = 0; day < 15; ++day) {
    const double close = closes[day], date = 2460310.5 + day;
    bw_alert_append_record_opt(alert, date, close, close + 1.0, close - 1.0, close, 1000, date);
  }
  bw_alert_destroy(alert);
  return prepared && fired > 0 ? 0 : 1;
}
