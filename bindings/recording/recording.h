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

/// Appends an answer to the script of @p call. Answers are used in order; the last one is used for
/// all further calls.
Answer& Given(const std::string& call);

/// Forgets script and transcript.
void Reset();

/// From now on every recorded line also goes to the standard error stream at once, for tests whose
/// process ends before the transcript is read.
void Echo();

/// Everything recorded so far, a line each: "sys_getSIMStatus()", "log 7 text", "syslog 138 text".
const std::vector<std::string>& Transcript();

/// The transcript as one text, for comparison with Lines().
std::string TranscriptText();

/// The transcript's lines that begin with @p prefix, as one text.
std::string TranscriptText(const std::string& prefix);

/// Texts as the lines of one text.
std::string Lines(const std::vector<std::string>& lines);

/// The two lines of a failure: system log first, then the debug log. @p text is what follows the
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
    /// What the call returns when no answer has been scripted.
    int unscripted;
};

/// For tests that play a whole device instead of writing a script. A director answers every call
/// and receives every line; no transcript is kept.
class Director {
  public:
    virtual ~Director() = default;
    /// Writes to the outputs and returns the result; may throw.
    virtual int Answer(const Call& call) = 0;
    /// Receives a line that a transcript would hold, such as a log line, but not the lines of
    /// calls.
    virtual void See(const std::string& line) = 0;
};

/// From now on @p director answers the calls; null restores script and transcript.
void Direct(Director* director);

/// Whether the calling thread is inside a function of the platform, so that what it does there is
/// not the product's doing.
bool IsInsidePlatform();

/// Marks the calling thread as inside the platform for the lifetime of the object.
class InsidePlatform {
  public:
    InsidePlatform();
    ~InsidePlatform();
    InsidePlatform(const InsidePlatform&) = delete;
    InsidePlatform& operator=(const InsidePlatform&) = delete;
};

/// Adds a line to the transcript.
void Record(std::string line);

/// Runs the scripted action of @p call, which is a call without an answer. A director is not asked.
void Act(const std::string& call);

/// Lets the director answer a call that is not recorded; returns 0 if there is no director.
int PlayUnrecorded(const std::string& call);

/// Records `call(arguments)` and plays its next answer into @p outputs; if the size of an output is
/// not that of its scripted bytes, the test is wrong and ends. Returns the scripted result, or @p
/// unscripted when the test has scripted no answer.
int Play(const std::string& call, const std::string& arguments,
         std::initializer_list<std::span<std::byte>> outputs, int unscripted = kUnscripted);

/// The bytes of an output parameter; none for a null pointer.
template <typename T>
std::span<std::byte> Output(T* out, std::size_t count = 1) {
    return out == nullptr ? std::span<std::byte>() : std::as_writable_bytes(std::span(out, count));
}

}  // namespace recording
