# Gives Doxygen what the headers do not repeat. The setter of a property, and the list that is edited
# in place, are documented by the comment of the getter; what all classes, codecs and records have in
# the same form is documented here. No line is added, so that warnings name the right one.

function documented() { return previous ~ /^ *\/\/\// }

# Puts a comment in front of what stands in a line, unless it has one.
function say(text) {
    if (!documented() && line !~ /\/\/\/</) sub(/[^ ]/, "/** " text " */ &", line)
}

{ line = $0 }

# A getter with a comment: its setter and its list may follow.
match(line, /[A-Za-z_0-9]+\(\) const/) && documented() {
    getter = substr(line, RSTART, RLENGTH)
    sub(/\(.*/, "", getter)
    setter["set" toupper(substr(getter, 1, 1)) substr(getter, 2)] = getter
    list[getter] = 1
}
match(line, /^ *void set[A-Za-z_0-9]+\(/) {
    name = substr(line, RSTART, RLENGTH - 1)
    sub(/^ *void /, "", name)
    if (name in setter) say("Sets " setter[name] "().")
}
match(line, /^ *[A-Za-z_:0-9<>]+& [A-Za-z_0-9]+\(\) *\{/) || match(line, /^ *std::vector<[^&]*>& [A-Za-z_0-9]+\(\) *\{/) {
    name = substr(line, RSTART, RLENGTH)
    sub(/\(.*/, "", name)
    sub(/.*& /, "", name)
    if (name in list) say("The same list as " name "() const gives, for editing in place.")
}
/^class / { split("", setter); split("", list) }

/^ *static const AtomClass kClass;/ { say("What the class says of all its atoms.") }
/^std::(true|false)_type keepsEveryBit/ { say("Tells VerbatimCodec which codecs are plain; nobody calls it.") }
/^inline constexpr std::string_view VexQTDataAtomType_/ { say("A kind of value that a data atom can hold.") }
/^ *static constexpr std::size_t width = / { say("How many bytes it takes up in the file.") }
/^ *static constexpr NumberRange range = / { say("Which numbers there is room for.") }
/^ *static constexpr Display display = / { say("How people write it.") }
/^ *static .* read\(ByteReader& in\) \{/ { say("Reads a value. \\throws RangeError where bytes are missing.") }
/^ *static void write\(ByteWriter& out, / { say("Appends the bytes of a value.") }
/^ *using ([A-Za-z]+)::([A-Za-z]+);/ { say("The constructors of the base.") }
/operator==\(.*(= default;|\{|;)$/ { say("Whether every part is equal.") }

/^    [A-Za-z][^(){}]* [A-Za-z]+_( = [^;(){}]*)?;/ { say("Where the property of that name is kept, for subclasses.") }

# The views of atoms: what the interface descriptions bind to, and what the controllers share.
match(line, /^ *Q_PROPERTY\(.* READ [A-Za-z]+/) {
    getter = substr(line, RSTART, RLENGTH)
    sub(/.* /, "", getter)
    say("What " getter "() gives, for interface descriptions.")
}
/^    void [A-Za-z]+Event\(Q[A-Za-z]+\* event\) override;/ { say("Does what the class is for.") }
/^    VexQT....AtomViewController\(const QString& nibName, / { say("As its bases are made.") }
/^    qsizetype [A-Za-z]+Count\(\) const \{ return count\(\); \}/ { say("The same as count().") }

# Two members in one declaration: the comment in front is about both.
/^    (std::u?int[0-9]+_t|double) [a-zA-Z]+ = 0, [a-zA-Z]+ = 0;/ && documented() {
    split(line, word, /[ ,=]+/)
    sub(/, /, "; /** Beside " word[3] ". */ " word[2] " ", line)
}

{
    print line
    previous = $0
}
