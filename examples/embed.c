/* The smallest host in C: bars in, a script's series out.
 *
 *   gcc -Iinclude examples/embed.c -Lbuild/release/lib -lbrindlewort -Wl,-rpath,build/release/lib
 */
#include <brindlewort/brindlewort.h>
#include <stdio.h>

static void on_script_error(void* user, const char* description) {
  (void)user;
  fprintf(stderr, "%s\n", description);
}

int main(void) {
  bw_script_output* output = bw_script_output_create();
  char* text = NULL;
  int day;
  if (!output) return 1;
  bw_script_output_on_script_error(output, on_script_error, NULL);

  for (day = 0; day < 12; ++day) {
    const double price = 100.0 + day;
    double date = 0.0;
    bw_script_output_to_julian_date(output, 2024, 1, 1 + day, 0, 0, 0, 0, &date);
    bw_script_output_append_record(output, date, price, price + 1.0, price - 1.0, price + 0.5, 1000);
  }

  bw_script_output_get_script_output(output, "SET AVERAGE = SMA(CLOSE, 3)\r\nCLOSE > AVERAGE", 0, "AVERAGE",
                                     &text);
  if (text) fputs(text, stdout);
  bw_script_output_destroy(output);
  if (!text) return 1;
  bw_free(text);
  return 0;
}
