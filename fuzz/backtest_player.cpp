#include "backtest_player.hpp"

#include <string>

namespace brindlewort::fuzz {

namespace {

void noteHelp(bw_backtest* h, Transcript& t) {
  char* text = nullptr;
  t.integer(bw_backtest_get_script_help(h, &text));
  t.takeText(text);
}

}  // namespace

BacktestPlayer::BacktestPlayer(const Scripts& scripts)
    : scripts_(scripts), handle_(bw_backtest_create()), listener_{handle_.get(), &transcript_} {
  require(handle_ != nullptr, "a handle can be made");
  bw_backtest_on_script_error(handle_.get(), onError, &listener_);
  bw_backtest_set_random_seed(handle_.get(), seed_);
}

void BacktestPlayer::onError(void* user, const char* description) {
  const Listener& listener = *static_cast<Listener*>(user);
  listener.transcript->text(description);
  noteHelp(listener.handle, *listener.transcript);
}

std::span<const Call<BacktestPlayer>> BacktestPlayer::calls() {
  using P = BacktestPlayer;
  static constexpr Call<P> kCalls[] = {
      {'a', "nh", &P::append},
      {'b', "nh", &P::appendMany},
      {'e', "kih", &P::edit},
      {'c', "", &P::clear},
      {'s', "i", &P::seed},
      {'r', "ssssdp", &P::wholeHistory},
      {'R', "ssssdp", &P::incremental},
      {'q', "ik", &P::queries},
      {'d', "iiiiiiid", &P::dates},
      {'z', "dd", &P::refusals},
  };
  return kCalls;
}

void BacktestPlayer::play(char letter, Line line) {
  playCall(*this, calls(), letter, line);
}

void BacktestPlayer::run(Line& line, Run function) {
  const std::string* script[4];
  bool clock = false;
  for (const std::string*& s : script) {
    s = &scripts_.of(line);
    clock = clock || dependsOnClock(*s);
  }
  const double slip = line.number();
  const std::string limits = line.text();
  const auto call = [&](bw_backtest* h, Transcript& t) {
    char* text = nullptr;
    t.integer(function(h, script[0]->c_str(), script[1]->c_str(), script[2]->c_str(), script[3]->c_str(),
                       slip, limits.c_str(), &text));
    t.takeText(text);
    noteHelp(h, t);
  };
  transcript_.clear();
  call(handle_.get(), transcript_);
  if (!std::exchange(hasPast_, true) || clock) return;
  Transcript transcript;
  const BacktestHandle fresh(bw_backtest_create());
  Listener listener{fresh.get(), &transcript};
  bw_backtest_on_script_error(fresh.get(), onError, &listener);
  bw_backtest_set_random_seed(fresh.get(), seed_);
  const std::vector<double> rows = bars_.packed(6);
  bw_backtest_append_records(fresh.get(), rows.data(), bars_.rows().size());
  call(fresh.get(), transcript);
  requireSame(transcript_.str(), transcript.str(),
              "backtest: a run equals that of a fresh handle with the same bars");
}

void BacktestPlayer::append(Line& line) {
  for (const Row& row : bars_.newRows(line)) {
    require(bw_backtest_append_record(handle_.get(), row.date, row.open, row.high, row.low, row.close,
                                      volumeOf(row)) == 0,
            "backtest: a bar is added");
    bars_.append(row);
  }
}

void BacktestPlayer::appendMany(Line& line) {
  const std::vector<Row> rows = bars_.newRows(line);
  const std::vector<double> numbers = packed(rows, 6);
  require(bw_backtest_append_records(handle_.get(), numbers.data(), rows.size()) == 0,
          "backtest: bars are added");
  for (const Row& row : rows) bars_.append(row);
}

void BacktestPlayer::edit(Line& line) {
  const Row row = bars_.row(line);
  int32_t result = 7;
  require(bw_backtest_edit_record(handle_.get(), row.date, row.open, row.high, row.low, row.close,
                                  volumeOf(row), &result) == 0 &&
              result == (bars_.edit(row) ? -1 : 0),
          "backtest: the first bar of a date is edited");
  hasPast_ = true;
}

void BacktestPlayer::clear(Line&) {
  require(bw_backtest_clear_records(handle_.get()) == 0, "backtest: bars are cleared");
  bars_.clear();
  hasPast_ = true;
}

void BacktestPlayer::seed(Line& line) {
  seed_ = line.integer();
  require(bw_backtest_set_random_seed(handle_.get(), seed_) == 0, "backtest: a seed is set");
}

void BacktestPlayer::queries(Line& line) {
  bw_backtest* h = handle_.get();
  const int32_t index = line.integer();
  const std::size_t rows = bars_.rows().size();
  const bool inside = index >= 1 && static_cast<std::size_t>(index) <= rows;
  int32_t count = -5, volume = 0, result = 7;
  double d = 0, o = 2, high = 3, l = 4, c = 5;
  require(bw_backtest_get_record_count(h, &count) == 0 && count == static_cast<int32_t>(rows),
          "backtest: count of bars");
  Transcript told, expected;
  const Row row = inside ? bars_.rows()[static_cast<std::size_t>(index - 1)] : Row{0.0, 2, 3, 4, 5, 0, 0};
  bw_backtest_get_record_by_index(h, index, &d, &o, &high, &l, &c, &volume, &result);
  for (double value : {d, o, high, l, c}) told.number(value);
  for (double value : {row.date, row.open, row.high, row.low, row.close}) expected.number(value);
  told.integer(volume);
  expected.integer(static_cast<int32_t>(row.volume));
  told.integer(result);
  expected.integer(inside ? -1 : 0);
  requireSame(told.str(), expected.str(), "backtest: a bar by its number is the bar that was given");
  const double date = bars_.date(line);
  require(bw_backtest_get_record_by_jdate(h, date, &o, nullptr, nullptr, nullptr, nullptr, &result) == 0 &&
              result == (bars_.find(date) < 0 ? 0 : -1),
          "backtest: a bar by its date");
}

void BacktestPlayer::dates(Line& line) {
  int32_t part[7];
  for (int32_t& p : part) p = line.integer();
  double date = 0.0;
  bw_backtest* h = handle_.get();
  require(bw_backtest_to_julian_date(h, part[0], part[1], part[2], part[3], part[4], part[5], part[6],
                                     &date) == 0,
          "backtest: a date is made");
  for (double asked : {date, line.number()}) {
    char* text = nullptr;
    require(bw_backtest_from_julian_date(h, asked, &text) == 0 && text, "backtest: a date is written");
    bw_free(text);
  }
}

void BacktestPlayer::refusals(Line& line) {
  bw_backtest* h = handle_.get();
  const double row[] = {line.number(), 2, 3, 1, 2, line.number()};
  const BacktestHandle other(bw_backtest_create());
  require(bw_backtest_append_records(other.get(), row, 1) == (fitsVolume(row[5]) ? 0 : 1),
          "backtest: a volume beyond whole numbers is refused");
  const bool refused =
      bw_backtest_append_records(nullptr, row, 1) == -1 && bw_backtest_append_records(h, nullptr, 1) == -1 &&
      bw_backtest_edit_record(h, 1, 1, 1, 1, 1, 1, nullptr) == -1 &&
      bw_backtest_get_record_by_index(h, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) ==
          -1 &&
      bw_backtest_get_record_by_jdate(h, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == -1 &&
      bw_backtest_get_record_count(h, nullptr) == -1 &&
      bw_backtest_to_julian_date(h, 1, 1, 1, 1, 1, 1, 1, nullptr) == -1 &&
      bw_backtest_from_julian_date(h, 1, nullptr) == -1 && bw_backtest_get_script_help(h, nullptr) == -1 &&
      bw_backtest_backtest(h, "CLOSE > 1", "", "", "", 0, "", nullptr) == -1 &&
      bw_backtest_backtest_new(h, "CLOSE > 1", "", "", "", 0, "", nullptr) == -1 &&
      bw_backtest_set_random_seed(nullptr, 1) == -1 &&
      bw_backtest_on_script_error(nullptr, nullptr, nullptr) == -1;
  require(refused, "backtest: null is refused");
  require(bw_backtest_cancel(nullptr) == -1 && bw_backtest_cancel(other.get()) == 0,
          "backtest: cancelling is answered, run or not");
  // No places for a bar's numbers, and no listener: both are allowed.
  int32_t result = 7;
  bw_backtest_get_record_by_index(other.get(), 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                  &result);
  bw_backtest_on_script_error(other.get(), nullptr, nullptr);
  char* text = nullptr;
  require(bw_backtest_backtest(other.get(), nullptr, nullptr, nullptr, nullptr, 0, nullptr, &text) == 0,
          "backtest: null texts are empty");
  bw_free(text);
}

}  // namespace brindlewort::fuzz
