// Output that notices when writing fails.

#ifndef DICTOOL_OUTPUT_H
#define DICTOOL_OUTPUT_H

#include <string>
#include <string_view>

namespace dictool {

// A file or standard output. Throws Failure when it cannot be written, as on a full disk, and
// ClosedPipe when the reader of a pipe has closed it.
class Output {
public:
    // Standard output.
    Output();
    // The file `name`, created or emptied; standard output for "-".
    explicit Output(const std::string& name);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // Gathers text and writes it in large pieces.
    void add(std::string_view text);

    // Writes what was gathered, then `text`.
    void write(std::string_view text);

    // Writes what was gathered and closes. Only then is it known that everything was written.
    void finish();

    bool isTerminal() const;

private:
    void writeThrough(std::string_view text);

    std::string m_name;
    int m_descriptor;
    std::string m_gathered;
};

// Writes `text`, the whole output of a command, to standard output.
void print(std::string_view text);

}  // namespace dictool

#endif
