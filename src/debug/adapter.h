// kv dap: the debugger for editors, by the Debug Adapter Protocol. A routine for each request; adapter.cpp has the table.
#pragma once

#include <deque>
#include <map>
#include <memory>

#include "debug/evaluate.h"

namespace debug {

// What the editor may ask the variables of; it knows it by a number until the program goes on.
struct Holder {
    enum class Kind { Locals, Globals, Types, Objects, Parts } kind;
    std::size_t frame = 0;
    Value value;  // Parts: of which; Objects: the name of the Type
};

// A text in a message, which may be anything; else empty.
std::string TextAt(const Json& message, const char* name);

class Adapter {
public:
    explicit Adapter(const Maker& maker) : make(maker) {}

    int Run();

private:
    struct Row {
        const char* command;
        Json (Adapter::*answer)(const Json& arguments);
    };
    static const std::vector<Row>& Rows();

    Maker make;
    std::unique_ptr<Session> session;
    std::vector<Holder> holders;
    Json launched;             // what was asked for
    std::deque<Json> waiting;  // requests that came while a program was awaited
    bool clientHasTerminals = false;
    int sequence = 0;
    bool leaves = false, begins = false, stands = false, stopsAtFailures = true, stopsAtEntry = false;
    std::map<std::string, std::string>
        cut;             // by category: bytes that a letter begins with, whose rest has not come
    std::string errors;  // that the program has told of since it stood last
    std::map<std::string, std::string> spelled;  // how the editor calls files of the program
    std::vector<std::string> after;              // events that follow the answer
    std::string goesOn;                          // how, behind the answer

    // Messages.
    void Send(Json message);
    void SendEvent(const char* event, const Json& body = Json::object());
    void SendOutput(const char* category, const std::string& text);
    void Take(Target::Event event, const std::string& text);
    bool ReadRequest(Json& request);
    void TakeRequest();
    void Serve(const Json& request);
    Json Answer(const std::string& command, const Json& arguments);
    void Go();
    void TakeStop(const std::string& line);
    void TellEnd();
    void NeedsSession() const;
    void NeedsStop() const;

    // The life of a program.
    Json Initialize(const Json& arguments);
    void Start();
    Launch MakeIt();
    std::string FolderOf(const Launch& launch) const;
    void StartInTerminal(Session& next);
    void Kill();
    Json LaunchIt(const Json& arguments);
    Json Configured(const Json&);
    Json Restart(const Json& arguments);
    Json Terminate(const Json&);
    Json Disconnect(const Json&);

    // Breakpoints.
    Json SetAll(const Json& wanted, const std::function<bool(const Breakpoint&)>& are,
                const std::function<void(const Json& one, Breakpoint& breakpoint)>& ask);
    static Json Told(const Breakpoint& breakpoint);
    std::map<int, Json> AllTold() const;  // by number
    void TellChanged(const std::map<int, Json>& before);
    Json SetBreakpoints(const Json& arguments);
    Json SetFunctionBreakpoints(const Json& arguments);
    Json SetExceptionBreakpoints(const Json& arguments);

    // Going on: when the request has been answered.
    Json Continue(const Json&);
    Json StepBy(const char* how);
    Json Next(const Json&);
    Json StepIn(const Json&);
    Json StepOut(const Json&);
    Json Pause(const Json&);

    // What there is, while the program stands.
    Json Threads(const Json&);
    Json StackTrace(const Json& arguments);
    std::size_t Hold(Holder holder);
    Json Scopes(const Json& arguments);
    Json Told(const Value& value);
    Part PartOf(const Holder& holder, std::size_t first, std::size_t count);
    const Holder& HolderOf(const Json& arguments);
    Json TypesTold();
    Json Variables(const Json& arguments);
    Json EvaluateIt(const Json& arguments);
    void Type(const std::string& text);
    Json Changed(const std::function<Value()>& place, const Value& value);
    Json SetVariable(const Json& arguments);
    Json SetExpression(const Json& arguments);
};

}  // namespace debug
