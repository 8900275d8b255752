<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>APCAlgoDlg</name>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>The algorithm %1 is not installed.</source>
        <translation>算法 %1 未安装.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>APCArrowDlg</name>
    <message>
        <source>Type:</source>
        <translation>类型:</translation>
    </message>
    <message>
        <source>Object:</source>
        <translation>对象:</translation>
    </message>
    <message>
        <source>Parameter:</source>
        <translation>参数:</translation>
    </message>
    <message>
        <source>Depend</source>
        <translation>依赖关系</translation>
    </message>
    <message>
        <source>Depend head</source>
        <translation>依赖头端</translation>
    </message>
    <message>
        <source>Depend tail</source>
        <translation>依赖尾端</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>process</source>
        <translation>过程</translation>
    </message>
    <message>
        <source>var</source>
        <translation>变量</translation>
    </message>
</context>
<context>
    <name>APCFileIterator</name>
    <message>
        <source>MultiDirectory</source>
        <translation>多个文件夹</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>过滤器</translation>
    </message>
    <message>
        <source>The setting %1 names the variable %2, which the model does not have</source>
        <translation>设置 %1 指定的变量 %2 在模型中不存在</translation>
    </message>
    <message>
        <source>End of the iteration</source>
        <translation>迭代结束</translation>
    </message>
    <message>
        <source>The output %1 is not connected to a variable</source>
        <translation>输出 %1 未连接到变量</translation>
    </message>
</context>
<context>
    <name>APCFileIteratorDlg</name>
    <message>
        <source>File Iterator</source>
        <translation>文件迭代器</translation>
    </message>
    <message>
        <source>Directory:</source>
        <translation>文件夹:</translation>
    </message>
    <message>
        <source>Filter:</source>
        <translation>过滤器:</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>APCFunFactory</name>
    <message>
        <source>    The function is using the input files and the specified suffixes to generate a new string, which is used as the function return value.</source>
        <translation>    该函数用输入文件和指定的后缀生成一个新字符串，作为函数的返回值.</translation>
    </message>
    <message>
        <source>The format of string is: </source>
        <translation>字符串的格式为: </translation>
    </message>
    <message>
        <source>    Path + the file name + the suffix + the file extension</source>
        <translation>    路径 + 文件名 + 后缀 + 文件扩展名</translation>
    </message>
    <message>
        <source>Path :&apos;c:/test&apos;</source>
        <translation>路径 :&apos;c:/test&apos;</translation>
    </message>
    <message>
        <source>The suffix :&apos;_a&apos;</source>
        <translation>后缀 :&apos;_a&apos;</translation>
    </message>
    <message>
        <source>The File extension :&apos;.tif&apos;</source>
        <translation>文件扩展名 :&apos;.tif&apos;</translation>
    </message>
    <message>
        <source>The return result of the Function :&apos;c:/test/a_b.tif&apos;</source>
        <translation>函数的返回结果 :&apos;c:/test/a_b.tif&apos;</translation>
    </message>
    <message>
        <source>    The function is using another directory and the specified files to generate a new string, which is used as the function return value.</source>
        <translation>    该函数用另一个文件夹和指定的文件生成一个新字符串，作为函数的返回值.</translation>
    </message>
    <message>
        <source>    Another directory + the file name + the file extension</source>
        <translation>    另一个文件夹 + 文件名 + 文件扩展名</translation>
    </message>
    <message>
        <source>Another directory :&apos;c:/test&apos;</source>
        <translation>另一个文件夹 :&apos;c:/test&apos;</translation>
    </message>
    <message>
        <source>The file name :&apos;a&apos;</source>
        <translation>文件名 :&apos;a&apos;</translation>
    </message>
    <message>
        <source>The return result of the Function :&apos;c:/test/a.tif&apos;</source>
        <translation>函数的返回结果 :&apos;c:/test/a.tif&apos;</translation>
    </message>
    <message>
        <source>    The function is replacing the input file&apos;s extension with the specified string to generate a new string, which is used as the function return value.</source>
        <translation>    该函数用指定的字符串替换输入文件的扩展名，生成一个新字符串，作为函数的返回值.</translation>
    </message>
    <message>
        <source>    Path + the file name + the new extension</source>
        <translation>    路径 + 文件名 + 新扩展名</translation>
    </message>
    <message>
        <source>The file name :&apos;x&apos;</source>
        <translation>文件名 :&apos;x&apos;</translation>
    </message>
    <message>
        <source>The new extension :&apos;.xml&apos;</source>
        <translation>新扩展名 :&apos;.xml&apos;</translation>
    </message>
    <message>
        <source>The return result of the Function :&apos;c:/test/x.xml&apos;</source>
        <translation>函数的返回结果 :&apos;c:/test/x.xml&apos;</translation>
    </message>
    <message>
        <source>    The function is replacing the specified old suffix of the input file with the specified new suffix to generate a new string, which is used as the function return value.</source>
        <translation>    该函数用指定的新后缀替换输入文件中指定的旧后缀，生成一个新字符串，作为函数的返回值.</translation>
    </message>
    <message>
        <source>    Path + the file name(removing the old suffix)the new suffix + the new extension</source>
        <translation>    路径 + 文件名(去掉旧后缀) + 新后缀 + 新扩展名</translation>
    </message>
    <message>
        <source>The file name(exclude the old suffix) :&apos;n&apos;</source>
        <translation>文件名(不含旧后缀) :&apos;n&apos;</translation>
    </message>
    <message>
        <source>The new suffix :&apos;_xyz&apos;</source>
        <translation>新后缀 :&apos;_xyz&apos;</translation>
    </message>
    <message>
        <source>The new extension :&apos;.tif&apos;</source>
        <translation>新扩展名 :&apos;.tif&apos;</translation>
    </message>
    <message>
        <source>The return result of the Function:&apos;c:/test/n_xyz.tif&apos;</source>
        <translation>函数的返回结果:&apos;c:/test/n_xyz.tif&apos;</translation>
    </message>
    <message>
        <source>    The function is replacing the parent directory of the input file with another directory to generate a new string, which is used as the function return value.</source>
        <translation>    该函数用另一个文件夹替换输入文件的上级文件夹，生成一个新字符串，作为函数的返回值.</translation>
    </message>
    <message>
        <source>    Another directory + the current directory of the input file+ the file name + the file extension</source>
        <translation>    另一个文件夹 + 输入文件所在的文件夹 + 文件名 + 文件扩展名</translation>
    </message>
    <message>
        <source>Another directory :&apos;c:/test/result&apos;</source>
        <translation>另一个文件夹 :&apos;c:/test/result&apos;</translation>
    </message>
    <message>
        <source>The current directory of the input file:&apos;1&apos;</source>
        <translation>输入文件所在的文件夹:&apos;1&apos;</translation>
    </message>
    <message>
        <source>The return result of the Function :&apos;c:/test/result/1/a.tif&apos;</source>
        <translation>函数的返回结果 :&apos;c:/test/result/1/a.tif&apos;</translation>
    </message>
    <message>
        <source>    The function is replacing the specified prefix portion of the input file with another directory to generate a new string, which is used as the function return value.</source>
        <translation>    该函数用另一个文件夹替换输入文件路径中指定的前缀部分，生成一个新字符串，作为函数的返回值.</translation>
    </message>
    <message>
        <source>    Another directory + the specified prefix + the file path (removing the specified prefix)+ the file name + the file extension</source>
        <translation>    另一个文件夹 + 指定的前缀 + 文件路径(去掉指定的前缀) + 文件名 + 文件扩展名</translation>
    </message>
    <message>
        <source>The specified prefix:&apos;c:/test/data/1&apos;</source>
        <translation>指定的前缀:&apos;c:/test/data/1&apos;</translation>
    </message>
    <message>
        <source>The file path (removing the specified prefix):&apos;2/3&apos;</source>
        <translation>文件路径(去掉指定的前缀):&apos;2/3&apos;</translation>
    </message>
    <message>
        <source>The return result of the Function :&apos;c:/test/result/2/3/a.tif&apos;</source>
        <translation>函数的返回结果 :&apos;c:/test/result/2/3/a.tif&apos;</translation>
    </message>
    <message>
        <source>    The function is used to add the subdirectory for the current path of the input file with the specified string, and to generate a new string based on the subdirectory and the file name,which is used as the function return value.</source>
        <translation>    该函数在输入文件的当前路径下添加以指定字符串命名的子文件夹，并由该子文件夹和文件名生成一个新字符串，作为函数的返回值.</translation>
    </message>
    <message>
        <source>The format of string is:</source>
        <translation>字符串的格式为:</translation>
    </message>
    <message>
        <source>    Path + the subdirectory name+ the file name + the file extension</source>
        <translation>    路径 + 子文件夹名 + 文件名 + 文件扩展名</translation>
    </message>
    <message>
        <source>The subdirectory name:&apos;tmp&apos;</source>
        <translation>子文件夹名:&apos;tmp&apos;</translation>
    </message>
    <message>
        <source>The return result of the Function :&apos;c:/test/tmp/x.tif&apos;</source>
        <translation>函数的返回结果 :&apos;c:/test/tmp/x.tif&apos;</translation>
    </message>
    <message>
        <source>    The function is to extract information from two strings consisting of the path and name of two input data in the same folder and generate a new string,which is used as the function return value.</source>
        <translation>    该函数从同一文件夹中两个输入数据的路径和名称这两个字符串中提取信息，生成一个新字符串，作为函数的返回值.</translation>
    </message>
    <message>
        <source>    Path + the same part of the file name + the separator + the file extension.</source>
        <translation>    路径 + 文件名的相同部分 + 分隔符 + 文件扩展名.</translation>
    </message>
    <message>
        <source>The same part of the file name:the character &apos;a&apos; and &apos;b&apos;</source>
        <translation>文件名的相同部分:字符 &apos;a&apos; 和 &apos;b&apos;</translation>
    </message>
    <message>
        <source>The Separator :&apos;_&apos;</source>
        <translation>分隔符 :&apos;_&apos;</translation>
    </message>
</context>
<context>
    <name>APCFunctionDlg</name>
    <message>
        <source>Function</source>
        <translation>函数</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>The function is error!</source>
        <translation>函数有错误!</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>名称:</translation>
    </message>
    <message>
        <source>Describe:</source>
        <translation>描述:</translation>
    </message>
    <message>
        <source>Insert reference</source>
        <translation>插入引用</translation>
    </message>
</context>
<context>
    <name>APCLog</name>
    <message>
        <source>Start the model:</source>
        <translation>开始运行模型:</translation>
    </message>
    <message>
        <source>Parameter: </source>
        <translation>参数: </translation>
    </message>
    <message>
        <source>Start</source>
        <translation>开始</translation>
    </message>
    <message>
        <source>Algorithm:</source>
        <translation>算法:</translation>
    </message>
    <message>
        <source>Description:</source>
        <translation>描述:</translation>
    </message>
    <message>
        <source>Parameter:</source>
        <translation>参数:</translation>
    </message>
    <message>
        <source>Result of execution:</source>
        <translation>执行结果:</translation>
    </message>
    <message>
        <source>Succeed</source>
        <translation>成功</translation>
    </message>
    <message>
        <source>Fail</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Error number:</source>
        <translation>错误号:</translation>
    </message>
    <message>
        <source>Error message:</source>
        <translation>错误信息:</translation>
    </message>
    <message>
        <source>End</source>
        <translation>结束</translation>
    </message>
    <message>
        <source>Pause the model:</source>
        <translation>暂停模型:</translation>
    </message>
    <message>
        <source>Continue the model:</source>
        <translation>继续运行模型:</translation>
    </message>
    <message>
        <source>End the model:</source>
        <translation>结束模型:</translation>
    </message>
    <message>
        <source>Generate:</source>
        <translation>生成:</translation>
    </message>
    <message>
        <source>Succeed:</source>
        <translation>成功:</translation>
    </message>
    <message>
        <source>Fail:</source>
        <translation>失败:</translation>
    </message>
</context>
<context>
    <name>APCModelFileDlg</name>
    <message>
        <source>Model file</source>
        <translation>模型文件</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>APCRasterFileIterator</name>
    <message>
        <source>{&quot;Out File&quot;:&quot;*.tif;*.tiff&quot;}</source>
        <translation>{&quot;Out File&quot;:&quot;*.tif;*.tiff&quot;}</translation>
    </message>
</context>
<context>
    <name>APCVarDlg</name>
    <message>
        <source>Value</source>
        <translation>值</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>名称:</translation>
    </message>
    <message>
        <source>Description:</source>
        <translation>描述:</translation>
    </message>
    <message>
        <source>Constant</source>
        <translation>常量</translation>
    </message>
    <message>
        <source>Variable</source>
        <translation>变量</translation>
    </message>
    <message>
        <source>...</source>
        <translation>...</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>APCVectorFileIterator</name>
    <message>
        <source>{&quot;Out File&quot;:&quot;*.shp;*.000&quot;}</source>
        <translation>{&quot;Out File&quot;:&quot;*.shp;*.000&quot;}</translation>
    </message>
</context>
<context>
    <name>ATBAlgo</name>
    <message>
        <source>Remove</source>
        <translation>移除</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>导出</translation>
    </message>
</context>
<context>
    <name>ATBCreateCircuitDlg</name>
    <message>
        <source>CreateCircuit</source>
        <translation>新建模型</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>名称:</translation>
    </message>
    <message>
        <source>Description:</source>
        <translation>描述:</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Name is null!</source>
        <translation>名称为空!</translation>
    </message>
    <message>
        <source>File is existing!</source>
        <translation>文件已存在!</translation>
    </message>
</context>
<context>
    <name>ATBFolder</name>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>名称:</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Name can not be empty</source>
        <translation>名称不能为空</translation>
    </message>
</context>
<context>
    <name>AlgoForm</name>
    <message>
        <source>Linked to a variable of the model</source>
        <translation>已链接到模型的变量</translation>
    </message>
    <message>
        <source>Unlink</source>
        <translation>取消链接</translation>
    </message>
    <message>
        <source>Enter a value here instead of taking the variable&apos;s</source>
        <translation>在此输入值，不使用变量的值</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Please set value: %1</source>
        <translation>请设置值: %1</translation>
    </message>
</context>
<context>
    <name>AutoLayoutCommand</name>
    <message>
        <source>The layout library failed: %1</source>
        <translation>布局库出错: %1</translation>
    </message>
    <message>
        <source>Auto Layout</source>
        <translation>自动布局</translation>
    </message>
</context>
<context>
    <name>ClusterExportCommand</name>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>The model is running: export it when the run has ended.</source>
        <translation>模型正在运行: 请在运行结束后导出.</translation>
    </message>
    <message>
        <source>can not run an empty model!</source>
        <translation>不能运行空模型!</translation>
    </message>
    <message>
        <source>Save the model first: the cluster runs the saved file.</source>
        <translation>请先保存模型: 集群运行的是已保存的文件.</translation>
    </message>
    <message>
        <source>Export for a cluster</source>
        <translation>导出到集群</translation>
    </message>
    <message>
        <source>The workflow cannot be written: </source>
        <translation>无法写入工作流: </translation>
    </message>
    <message>
        <source>The workflow is written. Run it on this machine with:

</source>
        <translation>工作流已写入. 在本机用以下命令运行:

</translation>
    </message>
</context>
<context>
    <name>DataTypeFactory</name>
    <message>
        <source>File</source>
        <translation>文件</translation>
    </message>
    <message>
        <source>File to write</source>
        <translation>要写入的文件</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>文件夹</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>多个文件</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>多个文件夹</translation>
    </message>
    <message>
        <source>File filter</source>
        <translation>文件过滤器</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>文本</translation>
    </message>
    <message>
        <source>Integer</source>
        <translation>整数</translation>
    </message>
    <message>
        <source>Long integer</source>
        <translation>长整数</translation>
    </message>
    <message>
        <source>Real number</source>
        <translation>实数</translation>
    </message>
    <message>
        <source>Spatial reference</source>
        <translation>空间参考</translation>
    </message>
</context>
<context>
    <name>FilterDataWidget</name>
    <message>
        <source>Output</source>
        <translation>输出</translation>
    </message>
    <message>
        <source>Patterns</source>
        <translation>匹配模式</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>添加</translation>
    </message>
    <message>
        <source>Name of the output parameter that receives each file</source>
        <translation>接收每个文件的输出参数的名称</translation>
    </message>
    <message>
        <source>Patterns separated by &apos;;&apos;, e.g. *.tif;*.tiff</source>
        <translation>以 &apos;;&apos; 分隔的匹配模式，例如 *.tif;*.tiff</translation>
    </message>
</context>
<context>
    <name>HostWindow</name>
    <message>
        <source>No data in the map.
Open a model from the Tool Box to build and run it.</source>
        <translation>地图中没有数据。
从工具箱打开一个模型来构建和运行它.</translation>
    </message>
    <message>
        <source>Commands</source>
        <translation>命令</translation>
    </message>
    <message>
        <source>Model Builder</source>
        <translation>模型构建器</translation>
    </message>
    <message>
        <source>The plug-in library could not be loaded:
%1</source>
        <translation>无法加载插件库:
%1</translation>
    </message>
    <message>
        <source>Unknown command: %1</source>
        <translation>未知命令: %1</translation>
    </message>
    <message>
        <source>No model named %1 in the tool box</source>
        <translation>工具箱中没有名为 %1 的模型</translation>
    </message>
</context>
<context>
    <name>JsonRowsDataWidget</name>
    <message>
        <source>Remove</source>
        <translation>移除</translation>
    </message>
    <message>
        <source>Replace with rows</source>
        <translation>替换为表格行</translation>
    </message>
    <message>
        <source>Kept as it stands: this value is no list the table can show.</source>
        <translation>按原样保留：此值不是表格能显示的列表.</translation>
    </message>
</context>
<context>
    <name>LineEditDataWidget</name>
    <message>
        <source>Browse</source>
        <translation>浏览</translation>
    </message>
</context>
<context>
    <name>LogWidget</name>
    <message>
        <source>Clear Log</source>
        <translation>清除日志</translation>
    </message>
</context>
<context>
    <name>ModelControler</name>
    <message>
        <source>Model Builder</source>
        <translation>模型构建器</translation>
    </message>
    <message>
        <source>Output</source>
        <translation>输出</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>日志</translation>
    </message>
    <message>
        <source>ToolBar</source>
        <translation>工具栏</translation>
    </message>
    <message>
        <source>Model</source>
        <translation>模型</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Insert</source>
        <translation>插入</translation>
    </message>
    <message>
        <source>View</source>
        <translation>视图</translation>
    </message>
    <message>
        <source>Delete</source>
        <translatorcomment>Kept in English: the same text is read as the Delete key&apos;s shortcut, which a translation would break.</translatorcomment>
        <translation>Delete</translation>
    </message>
    <message>
        <source>quit?</source>
        <translation>退出?</translation>
    </message>
    <message>
        <source>Whether or not to stop?</source>
        <translation>是否停止?</translation>
    </message>
    <message>
        <source>quit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>Save Edited Contents?</source>
        <translation>是否保存编辑的内容?</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Export Python Script</source>
        <translation>导出 Python 脚本</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>打印</translation>
    </message>
    <message>
        <source>Print entire model</source>
        <translation>打印整个模型</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>剪切</translation>
    </message>
    <message>
        <source>Cut entire model</source>
        <translation>剪切整个模型</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>复制</translation>
    </message>
    <message>
        <source>Copy entire model</source>
        <translation>复制整个模型</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>粘贴</translation>
    </message>
    <message>
        <source>Paste entire model</source>
        <translation>粘贴整个模型</translation>
    </message>
    <message>
        <source>Delete entire model</source>
        <translation>删除整个模型</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>撤销</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>重做</translation>
    </message>
    <message>
        <source>Add Variable</source>
        <translation>添加变量</translation>
    </message>
    <message>
        <source>Auto Layout</source>
        <translation>自动布局</translation>
    </message>
    <message>
        <source>AutoLayout entire model</source>
        <translation>自动布局整个模型</translation>
    </message>
    <message>
        <source>Full Extent</source>
        <translation>全图</translation>
    </message>
    <message>
        <source>Full entire model</source>
        <translation>显示整个模型</translation>
    </message>
    <message>
        <source>Fixed Zoom In</source>
        <translation>固定比例放大</translation>
    </message>
    <message>
        <source>ZoomFixedZoomIn entire model</source>
        <translation>按固定比例放大模型</translation>
    </message>
    <message>
        <source>Fixed Zoom Out</source>
        <translation>固定比例缩小</translation>
    </message>
    <message>
        <source>ZoomFixedZoomOut entire model</source>
        <translation>按固定比例缩小模型</translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation>放大</translation>
    </message>
    <message>
        <source>ZoomInTool entire model</source>
        <translation>拉框放大模型</translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation>缩小</translation>
    </message>
    <message>
        <source>ZoomOutTool entire model</source>
        <translation>拉框缩小模型</translation>
    </message>
    <message>
        <source>Pan</source>
        <translation>平移</translation>
    </message>
    <message>
        <source>PanTool entire model</source>
        <translation>平移模型</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>选择</translation>
    </message>
    <message>
        <source>SelectTool entire model</source>
        <translation>选择模型中的对象</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>连接</translation>
    </message>
    <message>
        <source>ConnectTool entire model</source>
        <translation>连接模型中的对象</translation>
    </message>
    <message>
        <source>Validate Entire Model</source>
        <translation>验证整个模型</translation>
    </message>
    <message>
        <source>ValidateModel entire model</source>
        <translation>验证整个模型</translation>
    </message>
    <message>
        <source>Run</source>
        <translation>运行</translation>
    </message>
    <message>
        <source>Run entire model</source>
        <translation>运行整个模型</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
    <message>
        <source>Pause entire model</source>
        <translation>暂停运行模型</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Stop entire model</source>
        <translation>停止运行模型</translation>
    </message>
    <message>
        <source>Delete 1 object</source>
        <translation>删除 1 个对象</translation>
    </message>
    <message>
        <source>Delete %1 objects</source>
        <translation>删除 %1 个对象</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>全选</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>移动</translation>
    </message>
    <message>
        <source>Add %1</source>
        <translation>添加 %1</translation>
    </message>
    <message>
        <source>Resize</source>
        <translation>调整大小</translation>
    </message>
    <message>
        <source>Change %1</source>
        <translation>修改 %1</translation>
    </message>
    <message>
        <source>Export for a cluster...</source>
        <translation>导出到集群...</translation>
    </message>
    <message>
        <source>Export the rounds as a Snakemake workflow</source>
        <translation>将各轮导出为 Snakemake 工作流</translation>
    </message>
    <message>
        <source>Recover changes</source>
        <translation>恢复更改</translation>
    </message>
    <message>
        <source>Changes to %1 made up to %2 never reached the file.

Open the model with those changes? Undo takes them back; No throws them away.</source>
        <translation>对 %1 所做的、截至 %2 的更改从未写入文件。

要打开带有这些更改的模型吗?撤销可以收回这些更改;选择“否”则丢弃它们.</translation>
    </message>
</context>
<context>
    <name>ModelScene</name>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Can not drag self!</source>
        <translation>不能将模型拖入自身!</translation>
    </message>
</context>
<context>
    <name>MultiDirectoryDataWidget</name>
    <message>
        <source>Folder</source>
        <translation>文件夹</translation>
    </message>
    <message>
        <source>Subfolders</source>
        <translation>子文件夹</translation>
    </message>
    <message>
        <source>Enabled</source>
        <translation>启用</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>添加...</translation>
    </message>
    <message>
        <source>Also scan the folders inside this folder</source>
        <translation>同时扫描此文件夹中的子文件夹</translation>
    </message>
    <message>
        <source>Scan this folder; unchecked keeps it listed but skips it</source>
        <translation>扫描此文件夹；不勾选时保留在列表中但跳过它</translation>
    </message>
</context>
<context>
    <name>PathDialog</name>
    <message>
        <source>Open file</source>
        <translation>打开文件</translation>
    </message>
    <message>
        <source>Open files</source>
        <translation>打开多个文件</translation>
    </message>
    <message>
        <source>Save file as</source>
        <translation>文件另存为</translation>
    </message>
    <message>
        <source>Select folder</source>
        <translation>选择文件夹</translation>
    </message>
</context>
<context>
    <name>PrintCommand</name>
    <message>
        <source>Model</source>
        <translation>模型</translation>
    </message>
    <message>
        <source>The picture could not be drawn.</source>
        <translation>无法绘制图片.</translation>
    </message>
    <message>
        <source>Export Picture</source>
        <translation>导出图片</translation>
    </message>
    <message>
        <source>SVG picture (*.svg);;PNG picture (*.png);;PDF document (*.pdf)</source>
        <translation>SVG 图片 (*.svg);;PNG 图片 (*.png);;PDF 文档 (*.pdf)</translation>
    </message>
    <message>
        <source>Could not write %1:
%2</source>
        <translation>无法写入 %1:
%2</translation>
    </message>
</context>
<context>
    <name>PythonCommand</name>
    <message>
        <source>Python</source>
        <translation>Python</translation>
    </message>
</context>
<context>
    <name>RecoveryCopy</name>
    <message>
        <source>Recover changes</source>
        <translation>恢复更改</translation>
    </message>
</context>
<context>
    <name>RunCmdDlg</name>
    <message>
        <source>Run</source>
        <translation>运行</translation>
    </message>
    <message>
        <source>Tab 1</source>
        <translation>选项卡 1</translation>
    </message>
    <message>
        <source>Tab 2</source>
        <translation>选项卡 2</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Please set value: </source>
        <translation>请设置值: </translation>
    </message>
</context>
<context>
    <name>RunCommand</name>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>can not run an empty model!</source>
        <translation>不能运行空模型!</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source> is wrong!</source>
        <translation> 有错误!</translation>
    </message>
</context>
<context>
    <name>SaveAsCommand</name>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>AlgoProcessControl File(*.apc);;All File(*.*)</source>
        <translation>模型文件(*.apc);;所有文件(*.*)</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Whether to delete or not?</source>
        <translation>是否删除?</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>打开</translation>
    </message>
</context>
<context>
    <name>SequenceControl</name>
    <message>
        <source>An arrow joins %1 and %2, which the model does not both have</source>
        <translation>箭头连接 %1 和 %2，但模型中没有其中之一</translation>
    </message>
    <message>
        <source>The variable %1 is written by two steps: %2 and %3</source>
        <translation>变量 %1 被两个步骤写入: %2 和 %3</translation>
    </message>
    <message>
        <source>The variable %1 feeds %2, which the model does not have</source>
        <translation>变量 %1 输入到 %2，但模型中没有 %2</translation>
    </message>
    <message>
        <source>Parameter: </source>
        <translation>参数: </translation>
    </message>
    <message>
        <source>Skip the step:</source>
        <translation>跳过步骤:</translation>
    </message>
</context>
<context>
    <name>SpatialReferenceDataWidget</name>
    <message>
        <source>Unknown spatial reference: enter an EPSG code such as EPSG:4326, or WKT.</source>
        <translation>未知的空间参考：请输入 EPSG 代码(例如 EPSG:4326)或 WKT.</translation>
    </message>
</context>
<context>
    <name>StopCommand</name>
    <message>
        <source>stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Whether or not to stop?</source>
        <translation>是否停止?</translation>
    </message>
</context>
<context>
    <name>ToolBox</name>
    <message>
        <source>ToolSet</source>
        <translation>工具集</translation>
    </message>
    <message>
        <source>New</source>
        <translation>新建</translation>
    </message>
    <message>
        <source>Model</source>
        <translation>模型</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Import Model</source>
        <translation>导入模型</translation>
    </message>
</context>
<context>
    <name>ToolBoxCommand</name>
    <message>
        <source>Tool Box</source>
        <translation>工具箱</translation>
    </message>
    <message>
        <source>Changes to the tool box made up to %1 never reached %2.

Show the tool box with those changes? No throws them away.</source>
        <translation>截至 %1 对工具箱所做的更改从未写入 %2。

要显示带有这些更改的工具箱吗?选择“否”则丢弃它们.</translation>
    </message>
</context>
<context>
    <name>ToolBoxWidget</name>
    <message>
        <source>Tool Box</source>
        <translation>工具箱</translation>
    </message>
</context>
<context>
    <name>ValidateCommand</name>
    <message>
        <source>succeed</source>
        <translation>成功</translation>
    </message>
    <message>
        <source>Validate Succeed</source>
        <translation>验证成功</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source> is wrong!</source>
        <translation> 有错误!</translation>
    </message>
    <message>
        <source>The parameter &quot;%1&quot; of &quot;%2&quot; is refused: %3</source>
        <translation>“%2”的参数“%1”被拒绝: %3</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
</context>
<context>
    <name>VarAddDlg</name>
    <message>
        <source>Add Variable</source>
        <translation>添加变量</translation>
    </message>
    <message>
        <source>Select the variable data type</source>
        <translation>选择变量的数据类型</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Not selected!</source>
        <translation>未选择!</translation>
    </message>
</context>
</TS>
