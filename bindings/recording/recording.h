// A platform for unit tests: each call answers what the test has scripted, and everything that the
// product does to its platform is kept in one ordered transcript.
#pragma once

#include <cstddef>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace recording {

/// What an unscripted sys_ or webui_ call returns; it writes nothing.
constexpr int kUnscripted = 90001;

/// One scripted answer: result, output parameters in the order of the call's parameters, and
/// something to do before answering.
class Answer {
  public:
    /// Result code; 0 when not given.
    Answer& Returns(int code) {
        result = code;
        return *this;
    }

    /// The next output parameter.
    template <typename T>
    Answer& Writes(const T& value) {
        static_assert(std::is_trivially_copyable_v<T>);
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): any record, as bytes
        return WritesBytes({reinterpret_cast<const std::byte*>(&value), sizeof(T)});
    }

    /// The next output parameter, a list of records.
    template <typename T>
    Answer& WritesRecords(const std::vector<T>& records) {
        return WritesBytes(std::as_bytes(std::span(records)));
    }

    /// The next output parameter stays as it is.
    Answer& WritesNothing() { return WritesBytes({}); }

    /// Runs @p action, which may throw, before the call answers.
    Answer& Does(std::function<void()> newAction) {
        action = std::move(newAction);
        return *this;
    }

  private:
    friend void Act(const std::string& call);
    friend int Play(const std::string& call, const std::string& arguments,
                    std::initializer_list<std::span<std::byte>> outputs, int unscripted);
    Answer& WritesBytes(std::span<const std::byte> bytes);

    int result = 0;
    std::vector<std::vector<std::byte>> writes;
    std::function<void()> action;
};

/// Appends an answer to the script of @p call. Answers are used in order; the last one stays.
Answer& Given(const std::string& call);

/// Forgets script and transcript.
void Reset();

/// From now on every recorded line also goes to the standard error stream at once, for tests whose
/// process ends.
void Echo();

/// Everything recorded so far, a line each: "sys_getSIMStatus()", "log 7 text", "syslog 138 text".
const std::vector<std::string>& Transcript();

/// The transcript as one text, for comparison with Lines().
std::string TranscriptText();

/// The transcript's lines that begin with @p prefix, as one text.
std::string TranscriptText(const std::string& prefix);

/// Texts as the lines of one text.
std::string Lines(const std::vector<std::string>& lines);

/// The two lines of a failure: system log first, then the debug log. @p text begins behind the
/// level name: " - void Foo() failed".
std::vector<std::string> Failure(const std::string& text);

/// A line of the debug log by the product at @p level; @p text as for Failure.
std::string Log(int level, const std::string& text);

/// How often @p call stands in the transcript.
std::size_t CallCount(const std::string& call);

/// One call of the product.
struct Call {
    const std::string& name;
    const std::string& arguments;
    /// Output parameters in their order; no bytes for a null pointer.
    std::span<const std::span<std::byte>> outputs;
    /// What the call returns when nobody says anything about it.
    int unscripted;
};

/// A test that plays a whole device instead of writing a script: it answers every call and sees
/// every line, of which none is kept.
class Director {
  public:
    virtual ~Director() = default;
    /// Writes to the outputs and returns the result; may throw.
    virtual int Answer(const Call& call) = 0;
    /// A line that a transcript would hold, log lines among them; not the calls.
    virtual void See(const std::string& line) = 0;
};

/// From now on @p director plays; null goes back to script and transcript.
void Direct(Director* director);

/// Whether the calling thread is inside the platform: what happens there is not the product's.
bool IsInsidePlatform();

/// The calling thread is inside the platform for the lifetime of this.
class InsidePlatform {
  public:
    InsidePlatform();
    ~InsidePlatform();
    InsidePlatform(const InsidePlatform&) = delete;
    InsidePlatform& operator=(const InsidePlatform&) = delete;
};

/// Adds a line to the transcript.
void Record(std::string line);

/// Does what the script says for @p call, which gives no answer; a director is not asked.
void Act(const std::string& call);

/// Lets a director answer a call that is not recorded; returns 0 without one.
int PlayUnrecorded(const std::string& call);

/// Records `call(arguments)` and plays its next answer into @p outputs; an output that does not fit
/// its scripted bytes is a fault of the test and ends it. Returns the scripted result, or
/// @p unscripted when the test says nothing about the call.
int Play(const std::string& call, const std::string& arguments,
         std::initializer_list<std::span<std::byte>> outputs, int unscripted = kUnscripted);

/// The bytes of an output parameter; none for a null pointer.
template <typename T>
std::span<std::byte> Output(T* out, std::size_t count = 1) {
    return out == nullptr ? std::span<std::byte>() : std::as_writable_bytes(std::span(out, count));
}

}  // namespace recording
