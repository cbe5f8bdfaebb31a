#include "suite/rasko/transfer/untrusted.h"

namespace
{
constexpr std::size_t LargestDocument = 32U << 20;
constexpr int DeepestNesting = 16;

class Limits : public pugi::xml_tree_walker
{
public:
    bool for_each(pugi::xml_node& node) override
    {
        return depth() < DeepestNesting && node.type() != pugi::node_doctype;
    }
};
} // namespace

namespace rasko
{
bool LoadUntrusted(std::string_view xml, pugi::xml_document& document)
{
    Limits limits;
    return xml.size() <= LargestDocument &&
           document.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_doctype,
                                pugi::encoding_utf8) &&
           document.traverse(limits);
}
} // namespace rasko
