# End-to-end check of knjige export: the bytes it writes, and what it refuses.
# Called with -DKNJIGE=<the program> -DWORK=<a folder it may wipe>.
file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}")
set(db "${WORK}/knjige.db")

# Runs the program, failing unless the exit code is `rc` and stderr holds `text`.
# Arguments holding a semicolon write it as <semi>: CMake splits lists there.
function(knjige rc text)
  set(args)
  foreach(a IN LISTS ARGN)
    string(REPLACE "<semi>" "\\;" a "${a}")
    list(APPEND args "${a}")
  endforeach()
  execute_process(COMMAND "${KNJIGE}" ${args} RESULT_VARIABLE got ERROR_VARIABLE err OUTPUT_VARIABLE out
    WORKING_DIRECTORY "${WORK}")
  string(FIND "${err}" "${text}" at)
  if(NOT got STREQUAL rc OR at LESS 0)
    message(FATAL_ERROR "knjige ${args}: exit ${got}, expected ${rc} and \"${text}\"\n${out}${err}")
  endif()
endfunction()

knjige(0 "" init --db "${db}")
foreach(row "1, '01.31.2016', 'A', 'Jan', 11, 10.5" "2, '02.15.2016', 'B', 'Čaj<semi> \"Žir\"', 12, 1234.25"
            "3, '03.01.2016', 'C', 'Mar', 11, 7")
  knjige(0 "" query --db "${db}" "INSERT INTO dbo.KnjPrihRashFBiH (BrojPoduzeca, GodinaKnj, RBroj, Datum, Isprava, Opis, Vrsta, Iznos, IznosPDV) VALUES (4, 2016, ${row}, 0)")
endforeach()

# February only, texts quoted without being asked: the header, then one row with Č and
# Ž in Windows-1250 and the date's whole year.
knjige(0 "" export 96 --db "${db}" --company 4 --year 2016 --period 1.2.2016-29.2.2016 --out feb.csv)
string(HEX "\"RBroj\";\"GodinaKnj\";\"Datum\";\"Isprava\";\"Opis\";\"Vrsta\";\"NazivVrste\";\"Prihodi\";\"PDVPrihodi\";\"Rashodi\";\"PDVRashodi\";\"I\"" expected)
# 2;2016;15.02.2016;"B";"Čaj; ""Žir""";12;"Prihod - Bankovni račun";1234,25;0;0;0; with CR LF before and after
string(APPEND expected "0d0a323b323031363b31352e30322e323031363b2242223b22c8616a3b2022228e69722222223b31323b22507269686f64"
  "202d2042616e6b6f766e69207261e8756e223b313233342c32353b303b303b303b0d0a")
file(READ "${WORK}/feb.csv" hex HEX)
if(NOT hex STREQUAL expected)
  message(FATAL_ERROR "export in Windows-1250:\n  expected ${expected}\n  actual   ${hex}")
endif()

knjige(1 "--force" export 96 --db "${db}" --company 4 --year 2016 --out feb.csv)
knjige(0 "" export 96 --db "${db}" --company 4 --year 2016 --out feb.csv --force --encoding utf-8 --decimal . --separator , --no-quote)
file(READ "${WORK}/feb.csv" text)
string(FIND "${text}" "\n2,2016,15.02.2016,B,Čaj; \"Žir\",12,Prihod - Bankovni račun,1234.25,0,0,0," at)
file(READ "${WORK}/feb.csv" bom LIMIT 3 HEX)
if(at LESS 0 OR NOT bom STREQUAL "efbbbf")
  message(FATAL_ERROR "export in UTF-8 over the old file: ${bom} ${text}")
endif()

# The database is never an output, under any of its names, --force or not; print, as
# export, leaves an existing file alone without --force.
file(SHA256 "${db}" db_hash)
file(CREATE_LINK knjige.db "${WORK}/veza.db" SYMBOLIC)
file(CREATE_LINK "${db}" "${WORK}/tvrda.db")
set(never "je baza podataka s kojom program radi (ili njena pomoćna datoteka) i ne smije se prepisati.")
foreach(target knjige.db ./knjige.db "${db}" veza.db tvrda.db knjige.db-wal knjige.db-shm knjige.db-journal)
  knjige(1 "${never}" export 96 --db "${db}" --company 4 --year 2016 --out "${target}" --force)
  knjige(1 "${never}" print 96 --db "${db}" --company 4 --year 2016 --pdf "${target}" --force)
endforeach()
knjige(1 "Datoteka knjige.db već postoji. Ostaje nepromijenjena; dodajte --force" print 96 --db "${db}" --company 4 --year 2016 --pdf knjige.db)
file(SHA256 "${db}" db_hash_after)
if(NOT db_hash_after STREQUAL db_hash OR EXISTS "${WORK}/knjige.db-journal")
  message(FATAL_ERROR "an output was written over the database")
endif()
knjige(1 "Datoteka feb.csv već postoji. Ostaje nepromijenjena; dodajte --force" print 96 --db "${db}" --company 4 --year 2016 --pdf feb.csv)
file(READ "${WORK}/feb.csv" bom LIMIT 3 HEX)
knjige(0 "" print 96 --db "${db}" --company 4 --year 2016 --pdf feb.csv --force)
file(READ "${WORK}/feb.csv" pdf LIMIT 5 HEX)
if(NOT bom STREQUAL "efbbbf" OR NOT pdf STREQUAL "255044462d")
  message(FATAL_ERROR "print kept or replaced the wrong file: ${bom} ${pdf}")
endif()

# "-" is the standard output: the rows go down the pipe, the report line to stderr.
execute_process(COMMAND "${KNJIGE}" export 96 --db "${db}" --company 4 --year 2016 --out - --encoding utf-8
  RESULT_VARIABLE got OUTPUT_VARIABLE out ERROR_VARIABLE err WORKING_DIRECTORY "${WORK}")
string(FIND "${out}" "\n3;2016;01.03.2016;\"C\";\"Mar\";11;" row)
if(NOT got EQUAL 0 OR row LESS 0 OR NOT err MATCHES "prebačeno 3 zapisa" OR EXISTS "${WORK}/-")
  message(FATAL_ERROR "export --out -: exit ${got}\n${out}${err}")
endif()

set(base export 96 --db "${db}" --company 4 --year 2016 --out bad.csv)
knjige(2 "Separator podataka i znak za decimalnu točku ne mogu biti isti !" ${base} --separator ,)
knjige(2 "Početni datum perioda (29.2.2016) je iza završnog (1.2.2016)." ${base} --period 29.2.2016-1.2.2016)
knjige(2 "Prodajno mjesto (--prod) imaju samo knjige 125 i 126." ${base} --prod 2)
knjige(2 "Opcije --quote i --no-quote se isključuju." ${base} --quote --no-quote)
knjige(2 "Opcija --year je zadana više puta; zadajte je jednom." ${base} --year=2015)
knjige(2 "Početni datum perioda (01.01.0001) je prije 01.01.1753" ${base} --period 01.01.0001-31.12.2016)
knjige(2 "Nepoznata knjiga: 97x" export 97x --db "${db}" --company 4 --year 2016 --out bad.csv)
# Every command takes a book by code, class or programmatic identifier.
knjige(0 "" export ArbosaPOSKnjige17.clsKnjPrihRashFBiH --db "${db}" --company 4 --year 2016 --out cls.csv)
# The rights the book's window asks: op1 may open 96 but not export it, and may not open 98.
knjige(0 "" query --db "${db}" "INSERT INTO dbo.PRAVA (OPERATER, PROGRAM, PRAVO) VALUES ('op1', 'KNJIGE', '96')<semi> INSERT INTO dbo.PRAVA (OPERATER, PROGRAM, PRAVO) VALUES ('op1', 'KNJIGE', '96.1')")
knjige(1 "Nemate pravo pristupa !\nOperater \"op1\" nema pravo izvoza knjige 96." ${base} --operator op1)
knjige(1 "Operater \"op1\" nema pravo otvoriti knjigu 98." export 98 --db "${db}" --company 4 --year 2016 --out bad.csv --operator op1)
if(EXISTS "${WORK}/bad.csv")
  message(FATAL_ERROR "a refused export wrote a file")
endif()
