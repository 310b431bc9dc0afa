#include "arguments/Help.hpp"

#include "arguments/EtcdArgument.hpp"

namespace connector_config {

namespace {

/// @return the text if the program was built with etcd
std::string withEtcd(const char* text) {
    return hasEtcd ? text : "";
}

constexpr const char* fleetCommands = R"(
  fleet put KEY[:TYPE]=VALUE...
                         writes up to 128 options below the prefix of --etcd
                         in one transaction, and prints its revision
  fleet delete KEY...    deletes options in one transaction, and prints how
                         many there were
  fleet import FILE      writes the options of a file, and prints a line for
                         each key that is new (+), changes (~) or is deleted
                         (-); FILE is a path, or path=P[,format=F]
      --delete           deletes the keys that the file does not have
      --dry-run          writes nothing
  fleet export           all options, as a JSON document that import takes
      --format=json|properties
  fleet status           whether etcd answers, its revision and number of keys)";

constexpr const char* etcdOption = R"(
      --etcd endpoint=URL[,endpoint=URL...],prefix=P[,MEMBER=VALUE...]
                         the keys of etcd that begin with P, read-only; URL is
                         http://HOST:PORT or https://HOST:PORT; the members
                         name, group, order, user, password-file, ca, cert,
                         key, cache and start=wait, cached or empty are
                         optional; by default the name is "etcd" and the order
                         is 60)";

constexpr const char* etcdExample = R"(
  connector-config --etcd endpoint=http://127.0.0.1:2379,prefix=shop/ show
  connector-config --etcd endpoint=https://db1:2379,prefix=shop/ fleet put a=1)";

} // namespace

std::string usageLine() {
    return "Usage: connector-config [OPTIONS] COMMAND [ARGUMENTS]\n";
}

std::string helpText() {
    return usageLine() + R"(
Shows the value of an option, and which source supplies it.

Commands:
  get KEY...             the value of each option on a line: text unchanged,
                         any other value as JSON
      --export           lines NAME='value' that a shell can evaluate
  keys [PREFIX]          all keys that begin with PREFIX, sorted
  show [PREFIX]          a table of key, type, value and source
  explain KEY            the value in each source, and which source "set KEY"
                         would write to
  watch KEY...           the current values and every change of them, while
                         changes are read from standard input, one per line:
                           set KEY[:TYPE]=VALUE [@SOURCE]
                           add FILE
                           remove NAME
                           quit
      --reload           reloads files when they change
  set KEY[:TYPE]=VALUE   sets an option of a running service, see --url
  serve                  reads messages from standard input, one JSON object
                         per line, and writes replies to standard output
      --reload           reloads files when they change
  serve --http HOST:PORT|unix:PATH [HTTP OPTIONS]
                         the same over HTTP, until SIGINT or SIGTERM; may be
                         repeated
      --writable PREFIX  clients may set keys that begin with PREFIX; may be
                         repeated; an empty PREFIX allows all keys
      --property-root DIR
                         clients may add property files below DIR
      --max-file-size BYTES
                         the size of such a file, at most; by default 64 MiB
      --token-file FILE  clients must send the token in FILE
      --allow-host NAME  clients may reach the service by NAME, for example
                         behind a proxy; may be repeated
      --tls-cert FILE --tls-key FILE
                         TLS with this certificate and its key
      --client-ca FILE   clients need a certificate of this authority
  check FILE...          what the library and java.util.Properties read
                         differently in property files, and other probable
                         mistakes, as FILE:LINE:COLUMN lines; JSON, YAML and
                         TOML files are parsed; "-" is standard input
      --schema FILE      also checks keys and values against a JSON Schema
      --disable RULE     switches a rule off; may be repeated
      --sarif            writes one SARIF document
      --fix              rewrites lines so that both read what the library
                         reads now
      --diff             shows what --fix would change
  snapshot               all sources with their entries, as one JSON document
      --with-secrets     does not mask secrets
  diff A B               the options that differ between two snapshots, files
                         or services; each side is a FILE or --url URL, and
                         "-" is a snapshot on standard input
      --url URL          a running service, as a side
  plan set KEY[:TYPE]=VALUE [@SOURCE]
  plan add FILE
  plan remove NAME
  plan reload            what the change would do; nothing is changed
  completion bash|zsh|fish
                         a script that completes this command line in a shell
  manual                 this text as a manual page)" +
           withEtcd(fleetCommands) + R"(

Sources, added in the order given:
  -f, --file FILE        a property, JSON, YAML or TOML file, read-only; FILE
                         is a path, or path=P[,name=N][,group=G][,order=O],
                         also with ",format=properties", json, yaml or toml,
                         and with ",optional=true" if the file may be missing;
                         by default the name is the path, there is no group,
                         the order is 100, and the extension names the format;
                         smaller orders are consulted first
      --env PREFIX       environment variables that begin with PREFIX,
                         read-only; the rest of the name, in lower case and
                         with "." for "__", is the key; PREFIX may also be
                         prefix=P[,name=N][,group=G][,order=O]; by default
                         the name is "env" and the order is 50; a second one
                         needs another name)" +
           withEtcd(etcdOption) + R"(
  -s, --set KEY[:TYPE]=VALUE
                         a value in "override", order 0
  -d, --default KEY[:TYPE]=VALUE
                         a value in "default", order 2147483647;
                         TYPE is bool, int, uint, double, ustring, string
                         (the default), boolArray, intArray, uintArray,
                         doubleArray, stringArray or ustringArray; arrays
                         are written as JSON arrays

The sources of a snapshot in place of others, for get, keys, show, explain,
watch, serve, snapshot and plan:
      --snapshot FILE    FILE is what the command snapshot has written, or "-"
                         for standard input; --file then only names files for
                         plan reload

A running service in place of sources, for get, keys, show, explain, watch, set
and diff:
      --url URL          http://HOST:PORT, https://HOST:PORT or unix:PATH;
                         watch then connects again when the service is lost,
                         and does not read standard input
      --token-file FILE  sends the token in FILE
      --ca FILE          trusts the certificates in FILE, in place of those
                         that the system trusts
      --client-cert FILE --client-key FILE
                         identifies the program with this certificate and its
                         key if the service asks for a certificate

SIGHUP makes watch and serve reload all files once.

For all commands, before or after the command:
      --json             one JSON document (watch: one JSON object per line)
      --trace            diagnostic lines on standard error
      --secret GLOB      masks the values of keys that match GLOB, except in
                         get and in messages; *password*, *secret* and *token*
                         are always masked; may be repeated
  -h, --help             this text
      --version          the version
  --                     no argument after this one is an option

Exit status:
  0  success
  1  no such option, a file that cannot be read, or another failure; check:
     there are findings; diff: there are differences
  2  invalid arguments; check and diff: also a file that cannot be read

Examples:
  connector-config -f site.properties get net.port
  connector-config -f path=site.properties,group=site keys site.net.
  connector-config -f site.properties -s net.port:uint=8080 show net.
  connector-config -f site.yaml --env APP_ show)" +
           withEtcd(etcdExample) + R"(
  connector-config -f site.properties -d log.level=info explain log.level
  printf '%s\n' 'set net.port=1' quit | connector-config watch net.port
  connector-config check site.properties
  connector-config -f site.properties snapshot > before.json
  connector-config diff before.json site.properties
  connector-config --snapshot before.json -f site.properties plan reload
  connector-config -f site.properties serve --reload --http 127.0.0.1:8080
  connector-config --url http://127.0.0.1:8080 set net.port:int=8080
)";
}

std::string versionText() {
    return "connector-config " CONNECTOR_CONFIG_VERSION "\n";
}

} // namespace connector_config
