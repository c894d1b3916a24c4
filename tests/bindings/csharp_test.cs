// The C# binding over the built library: prints every check that failed, exit code 1 if there was any.
//
//     csharp_test.exe EXAMPLES_FOLDER TEMPORARY_FOLDER CONVERTER_FOLDER
using System;
using System.IO;
using System.Linq;
using System.Text;
using Vok.TableRw;

internal static class CSharpTest
{
    private static int checks;
    private static int failures;
    private static string examples;
    private static string folder;

    private static void Check(string what, object answer, object wanted)
    {
        ++checks;
        if (Equals(answer, wanted)) return;
        ++failures;
        Console.WriteLine("failed: {0}: {1}, wanted {2}", what, answer, wanted);
    }

    private static void Throws<E>(string what, string message, Action action) where E : Exception
    {
        ++checks;
        try
        {
            action();
        }
        catch (E error)
        {
            if (error.Message.Contains(message)) return;
            ++failures;
            Console.WriteLine("failed: {0}: the message is \"{1}\"", what, error.Message);
            return;
        }
        catch (Exception error)
        {
            Console.WriteLine("failed: {0}: {1}", what, error);
        }
        ++failures;
        Console.WriteLine("failed: {0}: no {1}", what, typeof(E).Name);
    }

    private static string Joined(string[] texts)
    {
        return string.Join("|", texts);
    }

    private static string Write(string name, string text)
    {
        string path = Path.Combine(folder, name);
        File.WriteAllText(path, text, new UTF8Encoding(false));
        return path;
    }

    private static void Reading()
    {
        const string text = "Ж€\U0001F600";
        string path = Write(text + ".csv", "A;B;A\n" + text + ";2;3\n1\n4;;6\n7;8;9;10\n");
        using (Table table = Table.Read(path))
        {
            Check("names", Joined(table.Names), "A|B|A");
            Check("fields", table.FieldCount, 3);
            Check("rows", table.Count, 2L);
            Check("column by name", Joined(table.Column("A")), text + "|4");
            Check("column by index", Joined(table.Column(2)), "3|6");
            Check("column with an empty value", Joined(table.Column("B")), "2|");
            Check("row", Joined(table.Row(0)), text + "|2|3");
            Check("value", table.Value("B", 0), "2");
            Check("empty value", table.Value("B", 1), "");
            Check("type", table.TypeOf(0), FieldType.Text);
            Check("index", table.IndexOf("B"), 1);
            Check("no index", table.IndexOf("b"), -1);
            Check("tables", Joined(table.Tables()), "csv");
            Check("find", Joined(table.Find("B", new Condition("A", text))), "2");
            Check("find two", Joined(table.Find("A", new Condition("A", "4"), new Condition("B", ""))), "4");
            Check("find all", Joined(table.Find("B")), "2|");
            Check("find none", Joined(table.Find("B", new Condition("A", "x"))), "");
            Check("rejected", string.Join(" ", table.Rejected().Select(line => line.Number + ":" + line.Text)),
                  "2:1 4:7;8;9;10");
            Throws<ArgumentException>("unknown field", "has no field \"C\"; it has A, B, A", () => table.Column("C"));
            Throws<ArgumentException>("unknown condition", "no field \"C\"",
                                      () => table.Find("A", new Condition("C", "")));
            Throws<ArgumentOutOfRangeException>("field 3", "no field 3; it has 3", () => table.Column(3));
            Throws<ArgumentOutOfRangeException>("row 2", "no row 2; it has 2", () => table.Row(2));
            Throws<ArgumentOutOfRangeException>("row -1", "no row -1", () => table.Value("A", -1));
            Throws<ArgumentException>("NUL", "holds a NUL", () => table.Find("A", new Condition("A", "a\0b")));
            Throws<ArgumentNullException>("null", "", () => table.IndexOf(null));
            Throws<ArgumentException>("preview", "at least one", () => table.ReadPreview(0));
        }
        Table closed = Table.Read(path);
        closed.Dispose();
        closed.Dispose();
        Throws<ObjectDisposedException>("closed", "Table", () => closed.Read());
    }

    private static void Options()
    {
        string path = Write("o.csv", "note\nA::B\n'x::y'::1\n'z'::2\n");
        var options = new TableOptions
        {
            Delimiter = "::", Quote = "'", HeaderPosition = 1, DataPosition = 3, FileType = FileType.Csv, Table = "any"
        };
        using (Table table = Table.Read(path, options))
            Check("options", Joined(table.Names) + " " + Joined(table.Row(0)), "A|B z|2");
        using (Table table = Table.Read(path, new TableOptions { HeaderPosition = -1, Delimiter = "" }))
            Check("no header", Joined(table.Names) + " " + table.Count, "field_0 4");
        Throws<ArgumentException>("encoding", "not between 0 and 18",
                                  () => Table.Open(path, new TableOptions { Encoding = 19 }));
        Throws<ArgumentException>("direction", "0 or 1", () => Table.Open(path, new TableOptions { Direction = 2 }));
        Throws<ArgumentException>("file type", "no file type 10",
                                  () => Table.Open(path, new TableOptions { FileType = (FileType)10 }));
        Throws<FileNotFoundException>("missing", "there is no file",
                                      () => Table.Read(Path.Combine(folder, "gone.csv")));
        Throws<TableException>("damaged", "cannot be read as a table", () => Table.Read(Write("d.dbf", "\x03")));
        if (File.Exists("/proc/self/mem"))  // opens, and gives an error when it is read
            Throws<TableException>("a failing disk", "could not be read to its end", () => Table.Read("/proc/self/mem", new TableOptions { FileType = FileType.Csv }));
    }

    private static void Database()
    {
        using (Table table = Table.Open(Path.Combine(examples, "project.well2")))
        {
            Check("tables of a database", table.Tables().Contains("well_base"), true);
            table.ChooseTable("well_base");
            table.ReadHeaders();
            Check("headers alone", table.Count, 0L);
            Check("a number", table.TypeOf(table.IndexOf("w_id")), FieldType.Number);
            table.ReadPreview(1);
            Check("preview", table.Count, 1L);
            table.Read();
            Check("all", table.Count > 1, true);
        }
    }

    private static void Writing()
    {
        var fields = new[] { new Field("WELL", FieldType.Text, 10), new Field("DEPTH", FieldType.Number, 8, 2) };
        foreach (string name in new[] { "o.csv", "o.dbf", "o.xlsx" })
        {
            string path = Path.Combine(folder, name);
            using (var writer = new TableWriter(path, fields, "|"))
            {
                writer.AddRow("101-Р", "2860.25");
                writer.AddRow("Ж", null);
                Throws<ArgumentException>("short row", "1 values for 2 fields", () => writer.AddRow("1"));
                Throws<ArgumentException>("NUL in a row", "holds a NUL", () => writer.AddRow("a\0b", "1"));
            }
            using (Table table = Table.Read(path, new TableOptions { Encoding = Encodings.Cp1251, Delimiter = "|" }))
            {
                Check(name + " fields", Joined(table.Names), "WELL|DEPTH");
                Check(name + " column", Joined(table.Column(0)), "101-Р|Ж");
                Check(name + " numbers", Joined(table.Column(1)), "2860.25|");
            }
        }
        var ended = new TableWriter(Path.Combine(folder, "e.csv"), fields);
        ended.Dispose();
        ended.Dispose();
        Throws<ObjectDisposedException>("ended", "TableWriter", () => ended.AddRow("1", "2"));
        Throws<ArgumentException>("decimals", "out of range",
            () => new TableWriter(Path.Combine(folder, "f.csv"), new[] { new Field("A", FieldType.Text, 1, 256) }));
        Throws<TableException>("no folder", "there is no folder",
            () => new TableWriter(Path.Combine(folder, "gone", "f.csv"), fields));
    }

    private static int Main(string[] arguments)
    {
        examples = arguments[0];
        folder = arguments[1];
        Console.OutputEncoding = new UTF8Encoding(false);
        Library.SetConverterFolder(arguments[2]);
        Reading();
        Options();
        Database();
        Writing();
        Console.WriteLine("{0} checks, {1} failed", checks, failures);
        return failures == 0 ? 0 : 1;
    }
}
