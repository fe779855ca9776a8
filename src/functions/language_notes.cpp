#include "functions/language_notes.hpp"

namespace brindlewort {

std::span<const LanguageNotes> languageNotes() {
  static const std::vector<LanguageNotes> notes = {
      {"Statements",
       {"SET", "#"},
       {"SET NAME = EXPRESSION gives a series a name, for the statements below it. Each statement has a "
        "line of its own; the last line has no SET and is the main expression, which says whether the "
        "script fires. Put a blank behind the sign: the character there is dropped. What stands behind # "
        "on a line is a comment. To the library a line ends with CR LF and nothing else; the command-line "
        "tool takes any line end.",
        "SET SYMBOL, SET EXCHANGE, SET SECTOR and SET INDUSTRY stand at the head of a script and tell the "
        "host what it is about; they make no series."},
       "SET FAST = SMA(CLOSE, 5)\n"
       "SET SLOW = SMA(CLOSE, 20)  # two averages\n"
       "FAST > SLOW"},
      {"Prices",
       {"OPEN", "HIGH", "LOW", "CLOSE", "LAST", "VOLUME", "DATE"},
       {"The series of the bars: open, high, low and close, the volume, and the date as a Julian day "
        "number with the time as its fraction. LAST is CLOSE. REF(CLOSE, 1) is the close of the bar before."},
       "CLOSE > REF(HIGH, 1)"},
      {"Arithmetic",
       {"+", "-", "*", "/", "\\", "^"},
       {"Sum, difference, product, quotient (two signs for the same) and power, row by row. There is no "
        "precedence: what is left comes first, so that 1 + 2 * 3 is 9; use brackets. A null reads as 0, "
        "and a division by 0 gives no finite number, which shows as a null.",
        "A number on the left of a series stands in its last row only: write CLOSE * 2, not 2 * CLOSE."},
       "(HIGH - LOW) * 2 > OPEN / 10"},
      {"Comparisons",
       {">", "<", ">=", "=>", "<=", "=<", "=", "==", "!=", "<>"},
       {"1 on the rows where it holds, else 0. => is >=, =< is <=, == is =, and <> is !=. Values are "
        "compared at four decimals: two that differ further behind may be equal. A null compares as the "
        "number -987654321, below all prices. Put a blank on both sides of the sign."},
       "CLOSE >= OPEN"},
      {"Logic",
       {"AND", "OR", "NOT", "XOR", "EQV"},
       {"1 for true, 0 for false; every value but 0 counts as true. A AND B: both. A OR B: one of them, or "
        "both. A XOR B: one of them and not both. A EQV B: both or neither. NOT A: A is 0.",
        "AND and OR group the comparisons on their sides by themselves. XOR, EQV and NOT take the value "
        "that stands next to them: give a comparison a name by SET first, or write (CLOSE > OPEN) = FALSE. "
        "There is no precedence among them; use names or brackets."},
       "SET RISING = CLOSE > OPEN\n"
       "SET BUSY = VOLUME > SMA(VOLUME, 10)\n"
       "RISING AND BUSY"},
  };
  return notes;
}

}  // namespace brindlewort
