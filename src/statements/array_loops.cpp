// What comes out, here for the copy of a table:
//     	double** KVL_m_copy = __kvNewArray2<double>(KVL_m_size_0, KVL_m_size_1);
//     	for(int _i0 = 0; _i0 < KVL_m_size_0; _i0 = _i0 + 1) {
//     	for(int _i1 = 0; _i1 < KVL_m_size_1; _i1 = _i1 + 1) {
//     		KVL_m_copy[_i0][_i1] = KVL_m[_i0][_i1];
//     	}
//     	}
#include "statements/array_loops.h"

#include "symbols/own_names.h"

namespace {

std::string Counter(std::size_t dimension) { return "_i" + std::to_string(dimension); }

std::string Subscripts(std::size_t dimensions) {
    std::string text;
    for (std::size_t k = 0; k < dimensions; ++k) text += "[" + Counter(k) + "]";
    return text;
}

// One loop for each size round the line.
Code Loops(const std::vector<Code>& sizes, const Code& line) {
    Code text;
    std::string closing;
    for (std::size_t k = 0; k < sizes.size(); ++k) {
        const std::string counter = Counter(k);
        text += "\tfor(int " + counter + " = 0; " + counter + " < " + sizes[k] + "; " + counter + " = " +
                counter + " + 1) {\n";
        closing += "\t}\n";
    }
    return text + "\t\t" + line + "\n" + closing;
}

std::vector<Code> SizeNames(const Variable& array) {
    std::vector<Code> names;
    names.reserve(static_cast<std::size_t>(array.type.dims));
    for (int k = 0; k < array.type.dims; ++k) names.emplace_back(SizeName(array.cppName, k));
    return names;
}

ValueType SlotType(ValueType type) {
    type.dims = 0;
    return type;
}

// An Element is held behind a pointer in arrays.
std::string SlotCppName(const ValueType& type) {
    const std::string name = CppName(SlotType(type));
    return type.base == Base::Element ? name + "*" : name;
}

}  // namespace

std::string FillLoops(const Variable& array) {
    const std::string slot = array.cppName + Subscripts(static_cast<std::size_t>(array.type.dims));
    return Loops(SizeNames(array), slot + " = new " + CppName(SlotType(array.type)) + "();").text;
}

std::string FreeLoops(const Variable& array) {
    const std::string slot = array.cppName + Subscripts(static_cast<std::size_t>(array.type.dims));
    return Loops(SizeNames(array), "delete " + slot + ";").text;
}

Code CopyLoops(const ValueType& type, const Code& source, const std::string& copyName,
               const std::vector<Code>& sizes) {
    const std::string subscripts = Subscripts(sizes.size());
    Code counts;
    for (const Code& size : sizes) counts += (counts.text.empty() ? "" : ", ") + size;
    Code value = source + subscripts;
    if (type.base == Base::Element) value = "new " + CppName(SlotType(type)) + "(*" + value + ")";
    const std::string dimensions = sizes.size() > 1 ? std::to_string(sizes.size()) : "";
    return "\t" + ResultCppName(type) + " " + copyName + " = __kvNewArray" + dimensions + "<" +
           SlotCppName(type) + ">(" + counts + ");\n" +
           Loops(sizes, copyName + subscripts + " = " + value + ";");
}
