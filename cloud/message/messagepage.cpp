#include "cloud/message/messagepage.h"

namespace cloud
{
MessagePage BuildMessagePage(const std::vector<ServiceMessage>& messages)
{
    MessagePage page;
    page.body = "<div class=\"header\" align=\"center\">FarreachVeltrix returned the following message";
    page.body += messages.size() != 1 ? "s:</div>" : ":</div>";
    page.body += "<ol START=1>";
    int stops = 0;
    for (std::size_t i = 0; i < messages.size(); ++i)
    {
        const ServiceMessage& message = messages[i];
        const bool stop = message.action == "stop";
        page.body += std::string("<li class=\"") + (stop ? "stop" : "cont") + "\">" + message.text +
                     "<br><a href=\"http://" + message.link + "\">" + message.linkName + "</a></li>\r\n";
        if (!stop)
            continue;
        if (stops++ > 0)
            page.numbers += i + 1 == messages.size() ? " &amp; " : ", ";
        page.numbers += "#" + std::to_string(i + 1);
    }
    page.body += "</ol>";
    page.stop = stops > 0;
    if (page.stop)
    {
        page.body += stops == 1 ? "<p class=\"attn\"><b>Item " : "<p class=\"attn\"><b>Items ";
        page.body +=
            "<span class=\"hilite\">" + page.numbers +
            "</span> must be completed before synchronization with FarreachVeltrix can proceed!</b></p>";
    }
    return page;
}

MessagePage MalformedMessagePage()
{
    return {"<p>Veltrix has received a malformed message from the Server.<br>You may need to contact Veltrix "
            "support.</p>",
            "#1", false};
}
} // namespace cloud
