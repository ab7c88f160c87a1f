# Prints the lines "result\tWORK\tOURS\tCOMPETITOR\tTHEIRS\tRATIO\tSIDE\tLIMIT" as a table or as
# JSON; exit code 1 when a ratio is not as wanted, or when there are fewer than `wanted_rows`.
$1 == "result" {
  short = $7 == "<=" ? $6 + 0 > $8 + 0 : $6 + 0 < $8 + 0
  missed = missed || short
  if (json == "--json") {
    printf "%s  {\"work\": \"%s\", \"ours\": \"%s\", \"competitor\": \"%s\", \"theirs\": \"%s\", \"ratio\": %s, \"wanted\": \"%s %s\", \"reached\": %s}", rows ? ",\n" : "[\n", $2, $3, $4, $5, $6, $7, $8, short ? "false" : "true"
  } else {
    if (!rows) printf "%-42s %12s  %-12s %12s %7s  %s\n", "work", "ours", "competitor", "theirs", "ratio", "wanted"
    printf "%-42s %12s  %-12s %12s %7s  %s %s%s\n", $2, $3, $4, $5, $6, $7, $8, short ? "  SHORT" : ""
  }
  ++rows
}
END {
  if (json == "--json") print rows ? "\n]" : "[]"
  if (rows < wanted_rows) print "bench: " wanted_rows - rows " results are missing" > "/dev/stderr"
  exit missed || rows < wanted_rows
}
