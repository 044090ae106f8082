# End-to-end check of the command-line tool: knjige init, knjige query and knjige print.
# Called with -DKNJIGE=<the program> -DWORK=<a folder it may wipe>.

if(NOT KNJIGE OR NOT WORK)
  message(FATAL_ERROR "cli_smoke: pass -DKNJIGE=<program> and -DWORK=<folder>")
endif()
get_filename_component(KNJIGE "${KNJIGE}" ABSOLUTE)
get_filename_component(WORK "${WORK}" ABSOLUTE)
file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}")

# Runs the program; sets <prefix>_rc, <prefix>_out, <prefix>_err. CMake splits
# arguments at semicolons, so connection strings write them as <semi>.
function(knjige prefix)
  set(args)
  foreach(a IN LISTS ARGN)
    string(REPLACE "<semi>" "\\;" a "${a}")
    list(APPEND args "${a}")
  endforeach()
  execute_process(COMMAND "${KNJIGE}" ${args}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err WORKING_DIRECTORY "${WORK}")
  set(${prefix}_rc "${rc}" PARENT_SCOPE)
  set(${prefix}_out "${out}" PARENT_SCOPE)
  set(${prefix}_err "${err}" PARENT_SCOPE)
endfunction()

function(expect_ok prefix what)
  if(NOT "${${prefix}_rc}" STREQUAL "0")
    message(FATAL_ERROR "${what}: exit code ${${prefix}_rc}\nstdout: ${${prefix}_out}\nstderr: ${${prefix}_err}")
  endif()
endfunction()

# A refusal: a non-zero exit code and a message on stderr containing `text`.
function(expect_refusal prefix what text)
  if("${${prefix}_rc}" STREQUAL "0")
    message(FATAL_ERROR "${what}: expected a failure, got exit code 0\nstdout: ${${prefix}_out}")
  endif()
  string(FIND "${${prefix}_err}" "${text}" at)
  if(at LESS 0)
    message(FATAL_ERROR "${what}: stderr lacks \"${text}\"\nstderr: ${${prefix}_err}")
  endif()
endfunction()

function(expect_equal actual expected what)
  if(NOT "${actual}" STREQUAL "${expected}")
    message(FATAL_ERROR "${what}:\n--- expected ---\n${expected}\n--- actual ---\n${actual}")
  endif()
endfunction()

function(expect_missing path what)
  if(EXISTS "${path}")
    message(FATAL_ERROR "${what}: ${path} was created")
  endif()
endfunction()

set(db "${WORK}/knjige.db")

# --- help lists every command, and each command's help shows one example ----------------
knjige(help --help)
expect_ok(help "knjige --help")
foreach(command init query open print export check lock renumber insert)
  string(FIND "${help_out}" "knjige ${command}" at)
  if(at LESS 0)
    message(FATAL_ERROR "knjige --help does not list knjige ${command}:\n${help_out}")
  endif()
  knjige(one ${command} --help)
  string(FIND "${one_out}" "Primjer: knjige ${command} " at)
  if(NOT one_rc EQUAL 0 OR at LESS 0)
    message(FATAL_ERROR "knjige ${command} --help shows no example:\n${one_out}${one_err}")
  endif()
endforeach()

# --- init: a new schema-only database, never over an existing one ------------------------
knjige(init init --db "${db}")
expect_ok(init "init --db")
if(NOT EXISTS "${db}")
  message(FATAL_ERROR "init --db did not create ${db}")
endif()
file(SHA256 "${db}" first_hash)
knjige(again init --db "${db}")
expect_refusal(again "init over an existing file" "--force")
file(SHA256 "${db}" second_hash)
expect_equal("${second_hash}" "${first_hash}" "init without --force changed the existing file")
knjige(nofolder init --db "${WORK}/nema/mape/knjige.db")
expect_refusal(nofolder "init into a missing folder" "nema/mape")
expect_missing("${WORK}/nema" "init into a missing folder")
file(GLOB leftovers "${WORK}/.knjige-nova-*")
expect_equal("${leftovers}" "" "init left half-made files behind")

if(NOT WIN32)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env "XDG_DATA_HOME=${WORK}/data" "${KNJIGE}" init
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0 OR NOT EXISTS "${WORK}/data/knjige/knjige-demo.db")
    message(FATAL_ERROR "init without --db: exit ${rc}, no ${WORK}/data/knjige/knjige-demo.db\n${out}${err}")
  endif()
endif()

# --- query: the book tables with their types ---------------------------------------------
knjige(empty query --db "${db}" --types "SELECT RBroj, Datum, Iznos, Opis FROM dbo.KnjPrihRashFBiH ORDER BY RBroj")
expect_ok(empty "query of an empty book")
expect_equal("${empty_out}" "RBroj,Datum,Iznos,Opis\ninteger,date,currency,text\n" "query of an empty book")

# --- query: T-SQL DDL and writes for the tables of other modules -----------------------
knjige(ddl query --db "${db}" "CREATE TABLE dbo.Ifakture (BrojPoduzeca smallint NOT NULL, GodinaKnj smallint, BrojIfakt int, Vrsta nvarchar(3), OrgJed int, DatumIfakt datetime, IznosIfakt money, Napomena nvarchar(40))")
expect_ok(ddl "CREATE TABLE through query")
expect_equal("${ddl_out}" "" "CREATE TABLE prints nothing")
foreach(row
    "1, 2016, 10, 'DGP', 2, '03.15.2016', 1234.5, 'Pazar, \"Centar\"'"
    "1, 2016, 11, 'DGP', 2, '03.16.2016', 0.125, NULL"
    "1, 2016, 12, 'VP', 2, '12.31.2016', -7, 'drugo'")
  knjige(ins query --db "${db}" "INSERT INTO dbo.Ifakture (BrojPoduzeca, GodinaKnj, BrojIfakt, Vrsta, OrgJed, DatumIfakt, IznosIfakt, Napomena) VALUES (${row})")
  expect_ok(ins "INSERT through query")
  expect_equal("${ins_out}" "" "INSERT prints nothing on stdout")
endforeach()

knjige(sel query --db "${db}" --types "SELECT K.BrojIfakt, K.DatumIfakt, K.IznosIfakt AS Iznos, left('Pazar '+rtrim(cast(K.OrgJed as nvarchar(15))),20) AS Isprava, K.Napomena FROM Ifakture K WHERE K.Vrsta='DGP' AND K.DATUMIFAKT >= '03.01.2016' AND K.DATUMIFAKT<='03.31.2016' ORDER BY K.DatumIfakt")
expect_ok(sel "SELECT through query")
expect_equal("${sel_out}" "BrojIfakt,DatumIfakt,Iznos,Isprava,Napomena
integer,date,currency,text,text
10,2016-03-15,1234.5,Pazar 2,\"Pazar, \"\"Centar\"\"\"
11,2016-03-16,0.125,Pazar 2,
" "SELECT with T-SQL functions, month-first dates, quoting and NULL")

knjige(sum query --db "${db}" --types "SELECT COUNT(*) AS Broj, SUM(IznosIfakt) AS Ukupno, ISNULL(MAX(BrojIfakt),0) AS Zadnji FROM dbo.Ifakture WHERE BrojPoduzeca=1")
expect_ok(sum "aggregate through query")
expect_equal("${sum_out}" "Broj,Ukupno,Zadnji\ninteger,currency,integer\n3,1227.625,12\n" "aggregates")

# The same statement read through the ODBC backend (the SQLite ODBC driver) gives the
# same rows, when that driver is installed.
knjige(odbc query --conn "DRIVER={SQLite3}<semi>Database=${db}" "SELECT BrojIfakt, Vrsta, DatumIfakt FROM Ifakture ORDER BY BrojIfakt")
if(odbc_rc EQUAL 0)
  expect_equal("${odbc_out}" "BrojIfakt,Vrsta,DatumIfakt\n10,DGP,2016-03-15\n11,DGP,2016-03-16\n12,VP,2016-12-31\n"
    "query through ODBC")
else()
  message(STATUS "cli_smoke: the SQLite ODBC driver is not usable here, ODBC query not checked: ${odbc_err}")
endif()

# --- bad input: a clear message, a non-zero exit, nothing created ------------------------
knjige(missing query --db "${WORK}/nema.db" "SELECT 1")
expect_refusal(missing "query of a missing file" "nema.db")
expect_missing("${WORK}/nema.db" "query of a missing file")
knjige(folder query --db "${WORK}" "SELECT 1")
expect_refusal(folder "query of a folder" "${WORK} je mapa, a ne datoteka baze.")

knjige(missing2 query --conn "Data Source=${WORK}/nema2.db" "CREATE TABLE x (a int)")
expect_refusal(missing2 "query through a connection string to a missing file" "nema2.db")
expect_missing("${WORK}/nema2.db" "query through a connection string to a missing file")

knjige(badconn query --conn "Provider=SQLOLEDB.1<semi>Data Source=srv<semi>User ID=sa<semi>Password=tajna" "SELECT 1")
expect_refusal(badconn "query with a connection string without a catalog"
  "Neispravan connection string: nedostaje Initial Catalog (naziv baze).")
string(FIND "${badconn_err}" "tajna" at)
if(at GREATER -1)
  message(FATAL_ERROR "the error message shows the password: ${badconn_err}")
endif()

knjige(badsql query --db "${db}" "SELECT Nema FROM dbo.Ifakture")
expect_refusal(badsql "a failing statement" "Naredba nije izvršena: ")
knjige(badtable query --db "${db}" "INSERT INTO dbo.NemaTablice (a) VALUES (1)")
expect_refusal(badtable "a write to a missing table" "NemaTablice")

knjige(nosql query --db "${db}")
expect_refusal(nosql "query without a statement" "SQL")
knjige(both query --db "${db}" --conn "x.db" "SELECT 1")
expect_refusal(both "query with --db and --conn" "--db")
knjige(option query --db "${db}" --tipovi "SELECT 1")
expect_refusal(option "query with an unknown option" "--tipovi")

if(NOT WIN32)
  execute_process(COMMAND id -u OUTPUT_VARIABLE uid OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT uid STREQUAL "0")   # file permissions do not bind the superuser
    file(COPY_FILE "${db}" "${WORK}/samo-citanje.db")
    file(CHMOD "${WORK}/samo-citanje.db" PERMISSIONS OWNER_READ GROUP_READ WORLD_READ)
    knjige(readonly query --db "${WORK}/samo-citanje.db" "INSERT INTO dbo.Ifakture (BrojPoduzeca) VALUES (9)")
    expect_refusal(readonly "a write to a read-only file" "Naredba nije izvršena: ")
    knjige(readonly_read query --db "${WORK}/samo-citanje.db" "SELECT COUNT(*) AS Broj FROM dbo.Ifakture")
    expect_ok(readonly_read "a read of a read-only file")
    expect_equal("${readonly_read_out}" "Broj\n3\n" "a read of a read-only file")
  endif()
endif()

# --- query: a batch runs in order, every statement that gives rows is printed ----------
knjige(batch query --db "${db}" "WITH d AS (SELECT BrojIfakt FROM dbo.Ifakture WHERE Vrsta='VP') SELECT BrojIfakt FROM d<semi> VALUES (7)<semi> /* ne broji se */ DELETE FROM dbo.Ifakture WHERE BrojIfakt=12<semi> UPDATE dbo.Ifakture SET Vrsta='X' WHERE 1=0<semi> SELECT COUNT(*) AS Broj FROM dbo.Ifakture")
expect_ok(batch "a batch of five statements")
expect_equal("${batch_out}" "BrojIfakt\n12\n\ncolumn1\n7\n\nBroj\n2\n" "the rows of every statement, in order")
expect_equal("${batch_err}" "Obrađeno redova: 1\nObrađeno redova: 0\n" "the rows each write touched")
knjige(stops query --db "${db}" "DELETE FROM dbo.Ifakture WHERE BrojIfakt=11<semi> SELECT Nema FROM dbo.Ifakture<semi> DELETE FROM dbo.Ifakture")
expect_refusal(stops "a batch with a failing statement" "Naredba 2 od 3 nije izvršena: ")
knjige(left query --db "${db}" "SELECT BrojIfakt FROM dbo.Ifakture")
expect_equal("${left_out}" "BrojIfakt\n10\n" "what ran before the failure stays, nothing after it runs")
if(EXISTS /dev/full)
  execute_process(COMMAND "${KNJIGE}" query --db "${db}" "SELECT 1 AS x" OUTPUT_FILE /dev/full
    RESULT_VARIABLE full_rc ERROR_VARIABLE full_err)
  set(full_rc "${full_rc}")
  expect_refusal(full "output to a full disk" "Rezultat nije moguće ispisati")
endif()

# --- init --demo --force: replaces the file with the demonstration company --------------
knjige(demo init --db "${db}" --demo --force)
expect_ok(demo "init --demo --force")
knjige(demorows query --db "${db}" "SELECT COUNT(*) AS Broj FROM dbo.KnjPrihRashFBiH")
expect_ok(demorows "query of the demo book")
if(demorows_out MATCHES "^Broj\n0\n$" OR NOT demorows_out MATCHES "^Broj\n[0-9]+\n$")
  message(FATAL_ERROR "init --demo wrote no income and expense entries: ${demorows_out}")
endif()
# The demo's own invoice table (the generator's source) replaced the one made above.
knjige(replaced query --db "${db}" "SELECT COUNT(Napomena) AS Broj FROM dbo.Ifakture")
expect_refusal(replaced "the replaced database still has the old table" "Napomena")

# --- query: a reader that stops early (| head -1) ends the command quietly ---------------
find_program(HEAD_PROGRAM head)
if(HEAD_PROGRAM)
  # Far more than a pipe holds, so the reader is gone before the writing ends.
  execute_process(COMMAND "${KNJIGE}" query --db "${db}" "SELECT a.Opis, b.Opis AS O2 FROM dbo.KnjPrihRashFBiH a CROSS JOIN dbo.KnjPrihRashFBiH b"
    COMMAND "${HEAD_PROGRAM}" -1 RESULTS_VARIABLE pipe_rc OUTPUT_VARIABLE pipe_out ERROR_VARIABLE pipe_err)
  expect_equal("${pipe_rc};${pipe_out};${pipe_err}" "3;0;Opis,O2\n;" "query into a pipe closed early")
endif()

# --- print: the demo books into PDF files; bad books, periods and databases refused -------
string(TIMESTAMP year "%Y")
set(common --company 1 --year ${year})
knjige(print print 96 --db "${db}" ${common} --pdf "${WORK}/knjiga96.pdf")
expect_ok(print "print of the demo income and expense book")
file(READ "${WORK}/knjiga96.pdf" head LIMIT 5 HEX)
expect_equal("${head}" "255044462d" "print writes a PDF file (%PDF-)")
knjige(shop print clsTrgKnjKomisiona --db "${db}" ${common} --prod 501 --period "01.01.${year}-31.12.${year}"
  --pdf "${WORK}/knjiga126.pdf")
expect_ok(shop "print of one shop's commission book for a period")
knjige(badbook print 95 --db "${db}" ${common} --pdf "${WORK}/x.pdf")
expect_refusal(badbook "print of an unknown book" "Nepoznata knjiga: 95")
knjige(badperiod print 96 --db "${db}" ${common} --period "31.02.${year}-01.03.${year}" --pdf "${WORK}/x.pdf")
expect_refusal(badperiod "print with an impossible period" "Neispravan početni datum perioda: 31.02.${year}")
knjige(backwards print 96 --db "${db}" ${common} --period "01.03.${year}-01.02.${year}" --pdf "${WORK}/x.pdf")
expect_refusal(backwards "print with a period that ends before it starts" "je iza završnog")
knjige(nodb print 96 --db "${WORK}/nema.db" ${common} --pdf "${WORK}/x.pdf")
expect_refusal(nodb "print from a missing database" "nema.db")
knjige(notdb print 96 --db "${WORK}/knjiga96.pdf" ${common} --pdf "${WORK}/x.pdf")
expect_refusal(notdb "print from a file that is no database" "Spajanje na bazu nije uspjelo")
knjige(nopdf print 96 --db "${db}" ${common})
expect_refusal(nopdf "print without an output file" "--pdf")
knjige(shop96 print 96 --db "${db}" ${common} --prod 501 --pdf "${WORK}/x.pdf")
expect_refusal(shop96 "a sales point for a book without one" "--prod")
expect_missing("${WORK}/x.pdf" "a refused print")

# --- check: the demo books are clean; a row changed behind the program's back is named ---
set(checked "${WORK}/check.db")
knjige(fresh init --db "${checked}" --demo)
expect_ok(fresh "init --demo for the check")
foreach(book 96 97 98 99 100 101 102 105 106 109 125 126)
  knjige(clean check ${book} --db "${checked}" --company 1 --year ${year})
  expect_ok(clean "check of demo book ${book}")
endforeach()
set(change "UPDATE KnjPrihRashFBiH SET Opis='Tajno' WHERE RBroj=5 AND GodinaKnj=${year} AND BrojPoduzeca=1")
find_program(SQLITE3 sqlite3)
if(SQLITE3)
  execute_process(COMMAND "${SQLITE3}" "${checked}" "${change}" RESULT_VARIABLE rc)
else()
  knjige(outside query --db "${checked}" "${change}")
  set(rc "${outside_rc}")
endif()
expect_equal("${rc}" "0" "a change of a row outside the program")
knjige(dirty check 96 --db "${checked}" --company 1 --year ${year})
expect_equal("${dirty_rc}" "1" "check of a book changed outside the program")
string(FIND "${dirty_out}" "Promijenjena izvan programa: stavka 5: OPIS:" at)
if(at LESS 0)
  message(FATAL_ERROR "check does not name the changed row:\n${dirty_out}")
endif()
knjige(nobook check 96 --db "${WORK}/nema.db" --company 1 --year ${year})
expect_equal("${nobook_rc}" "2" "check of a missing database")

# --- lock, insert and renumber: the window's operations, refused in a closed period ---------
knjige(locked lock 96 --db "${checked}" --company 1 --year ${year} --to 31.01.${year})
expect_ok(locked "lock of January")
knjige(refused insert 96 --db "${checked}" --company 1 --year ${year} --at 2 --yes)
expect_refusal(refused "insertion in a closed period" "Razdoblje knjige je zaključano do 31.01.${year}.")
knjige(lowlevel lock 96 --db "${checked}" --company 1 --year ${year} --unlock --reason x --level 3)
expect_refusal(lowlevel "unlock by an operator of level 3" "nivoom pristupa 0")
knjige(noreason lock 96 --db "${checked}" --company 1 --year ${year} --unlock)
expect_refusal(noreason "unlock without a reason" "--reason")
knjige(opened lock 96 --db "${checked}" --company 1 --year ${year} --unlock --reason "Ispravka")
expect_ok(opened "unlock with a reason")
knjige(inserted insert 96 --db "${checked}" --company 1 --year ${year} --at 2 --yes)
expect_ok(inserted "insertion after the unlock")
knjige(noyes renumber 96 --db "${checked}" --company 1 --year ${year} --by-date)
expect_refusal(noyes "renumbering without --yes" "--yes")
knjige(bydate renumber 96 --db "${checked}" --company 1 --year ${year} --by-date --yes)
expect_ok(bydate "renumbering by date")

message(STATUS "cli_smoke: all checks passed")
