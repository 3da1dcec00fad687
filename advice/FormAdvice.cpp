#include "advice/FormAdvice.h"

#include "advice/AdviceParts.h"
#include "advice/Printable.h"
#include "serial/PortList.h"

namespace flashwriter {

namespace {

// What would be known if a write of this form had failed: the parts of the advice are the same.
FailureFacts asFailure(const FormFacts& form) {
    FailureFacts facts;
    facts.portPath = form.portPath;
    facts.port = form.port;
    facts.ports = form.ports;
    facts.filePath = form.filePath;
    facts.file = form.file;
    return facts;
}

// Ends a text whose remedy is to plug an adapter in: the form's list shows it only after an update.
const char* const UPDATE = " Then press Update.";

std::string noPortChosenAdvice(const FailureFacts& facts) {
    return facts.ports.empty()
               ? portsHere(facts) + UPDATE
               : "No port is chosen: choose one, after Update if it is not in the list. " +
                     portsHere(facts);
}

std::string portStep(const FailureFacts& facts) {
    if (facts.portPath.empty()) {
        return noPortChosenAdvice(facts);
    }
    if (isTooLong(facts.portPath)) {
        return longPathAdvice("port", facts.portPath);
    }
    const bool isWrongPath =
        facts.port.state == PortState::Missing || facts.port.state == PortState::NotPort;
    return portObstacle(facts) + (isWrongPath && facts.ports.empty() ? UPDATE : "");
}

std::string speedStep(bool speedChosen) {
    return speedChosen ? ""
                       : "No speed is chosen: choose 115,200 or 500,000 bps from the list; typed "
                         "text does not count.";
}

std::string fileStep(const FailureFacts& facts) {
    if (facts.filePath.empty()) {
        return "No image is chosen: press Select, or drop a .bin or .mot file onto its field.";
    }
    return isTooLong(facts.filePath) ? longPathAdvice("image file", facts.filePath)
                                     : fileObstacle(facts);
}

} // namespace

FormFacts formFacts(const std::string& portText, bool speedChosen, const std::string& fileText) {
    FormFacts facts;
    facts.portPath = portText;
    facts.port = portText.empty() ? PortFacts{} : portFacts(portText);
    facts.ports = portList();
    facts.speedChosen = speedChosen;
    facts.filePath = fileText;
    facts.file = fileText.empty() ? FileFacts{} : fileFacts(fileText);
    return facts;
}

FormAdvice formAdvice(const FormFacts& facts) {
    const FailureFacts parts = asFailure(facts);
    const std::string obstacle =
        firstOf({portStep(parts), speedStep(facts.speedChosen), fileStep(parts)});
    return obstacle.empty() ? FormAdvice{"Ready to write.", false}
                            : FormAdvice{printable(obstacle), true};
}

} // namespace flashwriter
