#include "output_player.hpp"

namespace brindlewort::fuzz {

namespace {

std::string firstName(const std::string& sets) {
  return sets.empty() ? "A" : sets.substr(0, sets.find(','));
}

std::string answer(int32_t status, int32_t result) {
  Transcript t;
  t.integer(status);
  t.integer(result);
  return t.str();
}

void noteHelp(bw_script_output* h, Transcript& t) {
  char* text = nullptr;
  t.integer(bw_script_output_get_script_help(h, &text));
  t.takeText(text);
}

void noteSeries(bw_script_output* h, const std::string& name, Transcript& t) {
  const double* values = nullptr;
  size_t count = 0;
  t.integer(bw_script_output_get_series(h, name.c_str(), &values, &count));
  for (size_t i = 0; i < count; ++i) t.number(values[i]);
}

void noteCount(bw_script_output* h, Transcript& t) {
  int32_t count = 0;
  t.integer(bw_script_output_get_record_count(h, &count));
  t.integer(count);
}

}  // namespace

OutputPlayer::OutputPlayer(const Scripts& scripts)
    : scripts_(scripts), handle_(bw_script_output_create()), listener_{handle_.get(), &transcript_} {
  require(handle_ != nullptr, "a handle can be made");
  bw_script_output_on_script_error(handle_.get(), onError, &listener_);
}

void OutputPlayer::onError(void* user, const char* description) {
  const Listener& listener = *static_cast<Listener*>(user);
  listener.transcript->text(description);
  noteCount(listener.handle, *listener.transcript);
}

std::span<const Call<OutputPlayer>> OutputPlayer::calls() {
  using P = OutputPlayer;
  static constexpr Call<P> kCalls[] = {
      {'a', "nh", &P::append},       {'b', "nh", &P::appendMany},   {'e', "kih", &P::edit},
      {'j', "kk", &P::editDate},     {'c', "", &P::clear},          {'r', "smv", &P::run},
      {'h', "s", &P::heading},       {'i', "i", &P::initialise},    {'p', "s", &P::prepare},
      {'m', "i", &P::setMode},       {'s', "iv", &P::addSeries},    {'f', "div", &P::feed},
      {'A', "nh", &P::appendLiving}, {'E', "kih", &P::editLiving},  {'J', "kk", &P::editLivingDate},
      {'R', "smv", &P::runLiving},   {'H', "s", &P::headingLiving}, {'P', "smv", &P::runPointers},
      {'q', "ik", &P::queries},      {'d', "iiiiiid", &P::dates},   {'z', "ddv", &P::refusals},
      {'!', "", &P::compareNow},
  };
  return kCalls;
}

void OutputPlayer::play(char letter, Line line) {
  playCall(*this, calls(), letter, line);
  readPromised();
}

// ---- How calls are made

/// A call of the incremental way: part of what a fresh handle is told.
void OutputPlayer::living(Calls::Call call) {
  transcript_.clear();
  call(handle_.get(), transcript_);
  const bool counts = setUp_ && scriptTaken_;
  journal_.note(std::move(call), transcript_.str(),
                counts ? Calls::Results::kCount : Calls::Results::kDoNotCount);
}

/// A run ends the promise of the pointer call before.
void OutputPlayer::livingRun(Calls::Call call) {
  list_ = nullptr;
  promised_.clear();
  living(std::move(call));
}

/// A run of the whole-history way depends on the bars alone.
void OutputPlayer::wholeHistory(const Calls::Call& call, bool clock) {
  list_ = nullptr;
  promised_.clear();
  transcript_.clear();
  call(handle_.get(), transcript_);
  const bool worthIt = std::exchange(hasPast_, true);
  if (clock || !worthIt) return;
  Transcript transcript;
  const OutputHandle fresh(bw_script_output_create());
  Listener listener{fresh.get(), &transcript};
  bw_script_output_on_script_error(fresh.get(), onError, &listener);
  // The events of both handles tell the bars of the incremental way, which the fresh one does not have.
  const std::vector<double> rows = bars_.packed(6);
  bw_script_output_append_records(fresh.get(), rows.data(), bars_.rows().size());
  for (const Row& row : livingBars_.rows()) {
    bw_script_output_append_record_new(fresh.get(), row.date, row.open, row.high, row.low, row.close,
                                       volumeOf(row));
  }
  call(fresh.get(), transcript);
  requireSame(transcript_.str(), transcript.str(),
              "output: a run equals that of a fresh handle with the same bars");
}

void OutputPlayer::compare() {
  if (journal_.told() || clockInside_ || !prepared_) return;
  Transcript transcript;
  const OutputHandle fresh(bw_script_output_create());
  Listener listener{fresh.get(), &transcript};
  bw_script_output_on_script_error(fresh.get(), onError, &listener);
  journal_.replay(fresh.get(), transcript, "output: a fresh handle that is told the same answers the same");
}

/// Rows that a pointer call has shown stay readable, and the list itself.
void OutputPlayer::readPromised() {
  volatile double sum = 0.0;
  if (list_) {
    for (size_t i = 0; i < list_->count; ++i) {
      if (promised_.size() < 256) promised_.push_back(list_->items[i]);
    }
  }
  for (const bw_series& series : promised_) {
    for (size_t i = 0; i < series.count; ++i) sum = sum + series.values[i];
  }
}

// ---- The whole-history way

void OutputPlayer::append(Line& line) {
  for (const Row& row : bars_.newRows(line)) {
    require(bw_script_output_append_record(handle_.get(), row.date, row.open, row.high, row.low, row.close,
                                           volumeOf(row)) == 0,
            "output: a bar is added");
    bars_.append(row);
  }
}

void OutputPlayer::appendMany(Line& line) {
  const std::vector<Row> rows = bars_.newRows(line);
  const std::vector<double> numbers = packed(rows, 6);
  require(bw_script_output_append_records(handle_.get(), numbers.data(), rows.size()) == 0,
          "output: bars are added");
  for (const Row& row : rows) bars_.append(row);
}

void OutputPlayer::edit(Line& line) {
  const Row row = bars_.row(line);
  int32_t result = 7;
  require(bw_script_output_edit_record(handle_.get(), row.date, row.open, row.high, row.low, row.close,
                                       volumeOf(row), &result) == 0 &&
              result == (bars_.edit(row) ? -1 : 0),
          "output: the first bar of a date is edited");
  hasPast_ = true;
}

void OutputPlayer::editDate(Line& line) {
  const double from = bars_.date(line), to = bars_.date(line);
  int32_t result = 7;
  require(bw_script_output_edit_jdate(handle_.get(), from, to, &result) == 0 &&
              result == (bars_.editDate(from, to) ? -1 : 0),
          "output: the first bar of a date gets another");
  hasPast_ = true;
}

/// What stays of a handle behind this is its mode.
void OutputPlayer::clear(Line&) {
  compare();
  require(bw_script_output_clear_records(handle_.get()) == 0, "output: bars are cleared");
  bars_.clear();
  livingBars_.clear();
  hasPast_ = true;
  journal_.clear();
  prepared_ = clockInside_ = setUp_ = scriptTaken_ = false;
  living([mode = mode_](bw_script_output* h, Transcript& t) {
    t.integer(bw_script_output_set_data_retrieve_mode(h, mode));
    noteCount(h, t);
  });
}

void OutputPlayer::run(Line& line) {
  const std::string script = scripts_.of(line);
  const int32_t first = line.integer();
  const std::string sets = line.text();
  wholeHistory(
      [&](bw_script_output* h, Transcript& t) {
        char* text = nullptr;
        t.integer(bw_script_output_get_script_output(h, script.c_str(), first, sets.c_str(), &text));
        t.takeText(text);
        noteSeries(h, firstName(sets), t);
        noteHelp(h, t);
      },
      dependsOnClock(script));
}

void OutputPlayer::heading(Line& line) {
  const std::string script = scripts_.of(line);
  wholeHistory(
      [&](bw_script_output* h, Transcript& t) {
        char* text = nullptr;
        t.integer(bw_script_output_get_custom_ind_from_condition(h, script.c_str(), &text));
        t.takeText(text);
        noteHelp(h, t);
      },
      dependsOnClock(script));
}

// ---- The incremental way

void OutputPlayer::initialise(Line& line) {
  setUp_ = true;
  living([size = line.integer()](bw_script_output* h, Transcript& t) {
    t.integer(bw_script_output_initialise_transient_store(h, size));
  });
}

void OutputPlayer::prepare(Line& line) {
  const std::string script = scripts_.of(line);
  prepared_ = true;
  clockInside_ = clockInside_ || dependsOnClock(script);
  living([script](bw_script_output* h, Transcript& t) {
    int32_t result = 7;
    t.integer(bw_script_output_process_scrip_data(h, script.c_str(), &result));
    t.integer(result);
  });
  scriptTaken_ = scriptTaken_ || transcript_.str() == answer(0, 1);
}

void OutputPlayer::setMode(Line& line) {
  mode_ = static_cast<int32_t>(101 + line.choice(3));
  living([mode = mode_](bw_script_output* h, Transcript& t) {
    t.integer(bw_script_output_set_data_retrieve_mode(h, mode));
  });
}

void OutputPlayer::addSeries(Line& line) {
  const int32_t size = line.integer();
  living([size, name = line.text()](bw_script_output* h, Transcript& t) {
    t.integer(bw_script_output_add_or_remove_basic_vector_series(h, name.c_str(), size));
  });
}

void OutputPlayer::feed(Line& line) {
  const double value = line.number();
  const uint8_t how = static_cast<uint8_t>(line.integer());
  living([value, how, name = line.text()](bw_script_output* h, Transcript& t) {
    t.integer(bw_script_output_update_basic_vector_data(h, name.c_str(), value, how));
  });
}

void OutputPlayer::appendLiving(Line& line) {
  for (const Row& row : livingBars_.newRows(line)) {
    living([row](bw_script_output* h, Transcript& t) {
      t.integer(bw_script_output_append_record_new(h, row.date, row.open, row.high, row.low, row.close,
                                                   volumeOf(row)));
    });
    livingBars_.append(row);
  }
}

void OutputPlayer::editLiving(Line& line) {
  const Row row = livingBars_.row(line);
  const bool there = livingBars_.edit(row);
  living([row](bw_script_output* h, Transcript& t) {
    int32_t result = 7;
    t.integer(bw_script_output_edit_record_new(h, row.date, row.open, row.high, row.low, row.close,
                                               volumeOf(row), &result));
    t.integer(result);
  });
  require(there || transcript_.str() == answer(0, 0), "output: no bar of a date, nothing to edit");
}

void OutputPlayer::editLivingDate(Line& line) {
  const double from = livingBars_.date(line), to = livingBars_.date(line);
  living([from, to](bw_script_output* h, Transcript& t) {
    int32_t result = 7;
    t.integer(bw_script_output_edit_jdate_new(h, from, to, &result));
    t.integer(result);
  });
  require(transcript_.str() == answer(0, livingBars_.editDate(from, to) ? -1 : 0),
          "output: the first bar of a date gets another, on the incremental way");
}

void OutputPlayer::runLiving(Line& line) {
  const std::string script = scripts_.of(line);
  const int32_t first = line.integer();
  livingRun([script, first, sets = line.text()](bw_script_output* h, Transcript& t) {
    char* text = nullptr;
    t.integer(bw_script_output_get_script_output_new(h, script.c_str(), first, sets.c_str(), &text));
    t.takeText(text);
    noteSeries(h, firstName(sets), t);
    noteHelp(h, t);
  });
}

void OutputPlayer::headingLiving(Line& line) {
  livingRun([script = scripts_.of(line)](bw_script_output* h, Transcript& t) {
    char* text = nullptr;
    t.integer(bw_script_output_get_custom_ind_from_condition_new(h, script.c_str(), &text));
    t.takeText(text);
    noteHelp(h, t);
  });
}

void OutputPlayer::runPointers(Line& line) {
  const std::string script = scripts_.of(line);
  const int32_t first = line.integer();
  livingRun([this, script, first, sets = line.text()](bw_script_output* h, Transcript& t) {
    intptr_t list = 0;
    t.integer(bw_script_output_get_script_output_ptr(h, script.c_str(), first, sets.c_str(), &list));
    // Without a script nothing is run, and the manual page is that of the run before.
    if (!script.empty()) noteHelp(h, t);
    if (list == -1) return;
    const bw_series_list& shown = *reinterpret_cast<const bw_series_list*>(list);
    if (h == handle_.get()) list_ = &shown;
    t.integer(static_cast<std::int64_t>(shown.count));
    for (size_t i = 0; i < shown.count; ++i) {
      t.integer(static_cast<std::int64_t>(shown.items[i].count));
      for (size_t row = 0; row < shown.items[i].count; ++row) t.number(shown.items[i].values[row]);
    }
  });
}

// ---- Questions

void OutputPlayer::queries(Line& line) {
  const int32_t index = line.integer();
  living([index, date = livingBars_.date(line)](bw_script_output* h, Transcript& t) {
    double d = 1, o = 2, high = 3, l = 4, c = 5;
    int32_t volume = 6, result = 7, number = -5;
    noteCount(h, t);
    t.integer(bw_script_output_get_jdate(h, index, &d));
    t.number(d);
    t.integer(bw_script_output_get_record_by_index(h, index, &d, &o, &high, &l, &c, &volume, &result));
    for (double value : {d, o, high, l, c}) t.number(value);
    t.integer(volume);
    t.integer(result);
    t.integer(bw_script_output_get_record_by_jdate(h, date, &o, &high, &l, &c, &volume, &result));
    for (double value : {o, high, l, c}) t.number(value);
    t.integer(volume);
    t.integer(result);
    t.integer(bw_script_output_get_record_number_by_jdate(h, date, &number));
    t.integer(number);
    t.integer(bw_script_output_get_variable_values_log(h, "/no/such/place"));
  });
}

void OutputPlayer::dates(Line& line) {
  int32_t part[6];
  for (int32_t& p : part) p = line.integer();
  double date = 0.0;
  bw_script_output* h = handle_.get();
  require(bw_script_output_to_julian_date(h, part[0], part[1], part[2], part[3], part[4], part[5], 999,
                                          &date) == 0,
          "output: a date is made");
  for (double asked : {date, line.number()}) {
    char* text = nullptr;
    require(bw_script_output_from_julian_date(h, asked, &text) == 0 && text, "output: a date is written");
    bw_free(text);
  }
}

/// Null handles and null places for results are answered, and so are wild rows in bulk.
void OutputPlayer::refusals(Line& line) {
  require(bw_version() != nullptr, "the version is told");
  bw_script_output* h = handle_.get();
  const double row[] = {line.number(), line.number(), 3, 2, 1, kWildNumbers[line.choice(kWildCount)]};
  const OutputHandle other(bw_script_output_create());
  require(bw_script_output_append_records(other.get(), row, 1) == (fitsVolume(row[5]) ? 0 : 1),
          "output: a volume beyond whole numbers is refused");
  const bool refused = bw_script_output_append_records(nullptr, row, 1) == -1 &&
                       bw_script_output_append_records(h, nullptr, 1) == -1 &&
                       bw_script_output_append_records(h, nullptr, 0) == 0 &&
                       bw_script_output_edit_record(h, 1, 1, 1, 1, 1, 1, nullptr) == -1 &&
                       bw_script_output_get_record_by_index(h, 1, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                            nullptr, nullptr) == -1 &&
                       bw_script_output_get_record_by_jdate(h, 1, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                            nullptr) == -1 &&
                       bw_script_output_get_record_count(h, nullptr) == -1 &&
                       bw_script_output_get_jdate(h, 1, nullptr) == -1 &&
                       bw_script_output_get_record_number_by_jdate(h, 1, nullptr) == -1 &&
                       bw_script_output_edit_jdate(h, 1, 2, nullptr) == -1 &&
                       bw_script_output_to_julian_date(h, 1, 1, 1, 1, 1, 1, 1, nullptr) == -1 &&
                       bw_script_output_from_julian_date(h, 1, nullptr) == -1 &&
                       bw_script_output_get_script_output(h, "CLOSE > 1", 0, "", nullptr) == -1 &&
                       bw_script_output_get_custom_ind_from_condition(h, "CLOSE > 1", nullptr) == -1 &&
                       bw_script_output_process_scrip_data(h, "CLOSE > 1", nullptr) == -1 &&
                       bw_script_output_edit_record_new(h, 1, 1, 1, 1, 1, 1, nullptr) == -1 &&
                       bw_script_output_edit_jdate_new(h, 1, 2, nullptr) == -1 &&
                       bw_script_output_get_script_output_new(h, "CLOSE > 1", 0, "", nullptr) == -1 &&
                       bw_script_output_get_custom_ind_from_condition_new(h, "CLOSE > 1", nullptr) == -1 &&
                       bw_script_output_get_script_output_ptr(h, "CLOSE > 1", 0, "", nullptr) == -1 &&
                       bw_script_output_get_series(h, "A", nullptr, nullptr) == -1 &&
                       bw_script_output_get_script_help(h, nullptr) == -1 &&
                       bw_script_output_on_script_error(nullptr, nullptr, nullptr) == -1;
  require(refused, "output: null is refused");
  require(bw_script_output_cancel(nullptr) == -1 && bw_script_output_cancel(other.get()) == 0,
          "output: cancelling is answered, run or not");
  char* text = nullptr;
  bw_script_output_on_script_error(other.get(), nullptr, nullptr);
  require(bw_script_output_get_script_output(other.get(), nullptr, 0, nullptr, &text) == 0,
          "output: a null text is empty");
  bw_free(text);
}

}  // namespace brindlewort::fuzz
