/* Numbers of the library's resources, for the resource compiler and the code. */
#define IDR_TYPE_LIBRARY 1
#define IDR_ALERT 101
#define IDR_BACKTEST 102
#define IDR_SCRIPT_OUTPUT 103
#define IDR_VALIDATE 104
