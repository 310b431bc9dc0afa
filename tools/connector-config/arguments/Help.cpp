#include "arguments/Help.hpp"

namespace connector_config {

std::string usageLine() {
    return "Usage: connector-config [OPTIONS] COMMAND [ARGUMENTS]\n";
}

std::string helpText() {
    return usageLine() + R"(
What value has an option, and which source says so?

Commands:
  get KEY                the value: text as it is, everything else as JSON
  keys [PREFIX]          all keys that begin with PREFIX, sorted
  show [PREFIX]          a table of key, type, value and source
  explain KEY            what each source says, and where "set KEY" would go
  watch KEY...           the values as they come, while changes are read from
                         standard input, one a line:
                           set KEY[:TYPE]=VALUE [@SOURCE]
                           add FILE
                           remove NAME
                           quit
  serve                  answers messages, JSON objects, one a line on standard
                         input, with replies on standard output
  serve --http HOST:PORT [HTTP OPTIONS]
                         the same for other programs, until SIGINT or SIGTERM
      --writable PREFIX  lets them set keys that begin with PREFIX; may be
                         repeated; an empty one is for all keys
      --property-root DIR
                         lets them add property files below DIR
      --token-file FILE  lets in only those who show the token in FILE

Sources, added in the order given:
  -f, --file FILE        a property file, read-only; FILE is a path, or
                         path=P[,name=N][,group=G][,order=O]; without these,
                         the path is the name, there is no group, and the
                         order is 100; smaller orders are consulted first
  -s, --set KEY[:TYPE]=VALUE
                         a value in "override", order 0
  -d, --default KEY[:TYPE]=VALUE
                         a value in "default", order 2147483647
                         TYPE is string if left out, or bool, int, uint,
                         double, ustring, boolArray, intArray, uintArray,
                         doubleArray, stringArray, ustringArray; arrays are
                         written as JSON arrays

For all commands, before or after them:
      --json             one JSON document (watch: one JSON object a line)
      --trace            diagnostic lines, to standard error
      --secret GLOB      hides the values of keys that GLOB fits, as those of
                         *password*, *secret* and *token* are, from all but get
                         and messages; may be repeated
  -h, --help             this text
      --version          the version
  --                     everything that follows is no option

Exit status:
  0  all went well
  1  no such option, a file that cannot be read, or another failure
  2  wrong arguments

Examples:
  connector-config -f site.properties get net.port
  connector-config -f path=site.properties,group=site keys site.net.
  connector-config -f site.properties -s net.port:uint=8080 show net.
  connector-config -f site.properties -d log.level=info explain log.level
  printf '%s\n' 'set net.port=1' quit | connector-config watch net.port
  connector-config -f site.properties serve --http 127.0.0.1:8080
)";
}

std::string versionText() {
    return "connector-config " CONNECTOR_CONFIG_VERSION "\n";
}

} // namespace connector_config
