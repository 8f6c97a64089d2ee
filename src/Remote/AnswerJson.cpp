#include "Remote/AnswerJson.h"

#include "Texts/Localized.h"
#include "Texts/Shown.h"

#include <utility>

namespace velmorquit::remote {

Json encodeAsked(const std::vector<Application>& asked, PowerAction then) {
    return {{"asked", encode(asked)}, {"then", rawValue(then)}};
}

Json encodeAsked(const std::vector<Application>& asked, std::string_view text) {
    return {{"asked", encode(asked)}, {"text", text}};
}

Json encodeAsked(const std::vector<Application>& asked, const std::vector<Application>& notAsked,
                 std::string_view text) {
    return {{"asked", encode(asked)}, {"notAsked", encodeStubborn(notAsked)}, {"text", text}};
}

Json encodeForced(const std::vector<Application>& forced, const std::vector<std::string>& refused) {
    return {{"forced", encode(forced)}, {"refused", refused}};
}

Json encodeText(std::string_view text) { return {{"text", text}}; }

Json encodeAction(std::string_view name, std::string_view title) {
    return {{"name", name}, {"title", title}};
}

Json encodeActions(Json list) { return {{"actions", std::move(list)}}; }

std::string givenUpText() { return localized("Annullato: non spengo, non riavvio e non esco."); }

Answer decodeAnswer(const Json& json) {
    const Fields fields(json);
    Answer answer{.asked = std::nullopt,
                  .notAsked = decodeApplications(json, "notAsked"),
                  .refused = fields.texts("refused"),
                  .text = fields.lines("text")};
    if (fields.at("asked").is_array())
        answer.asked = decodeApplications(json, "asked");
    return answer;
}

std::vector<PublishedAction> decodeActions(const Json& json) {
    return Fields(json).list("actions", [](const Json& action) {
        const Fields fields(action);
        PublishedAction read{
            .name = fields.text("name"), .title = fields.text("title"), .parameters = {}};
        if (const Json& parameters = fields.at("parameters"); parameters.is_object()) {
            for (const auto& parameter : parameters.items())
                read.parameters.push_back(shownName(parameter.key()));
        }
        return read;
    });
}

} // namespace velmorquit::remote
